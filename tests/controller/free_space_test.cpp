#include "controller/free_space.h"

#include "support/temp_folder.h"

#include <gtest/gtest.h>

using namespace tavrelune;

TEST(FreeSpace, NeedsAddUpPerFileSystemWithFivePercentToSpare)
{
    // /out and /out2 share one file system, /work has its own.
    const FreeSpaceQuery volumes = [](const QString& folder) -> std::optional<VolumeSpace> {
        if (folder == "/unknown")
            return std::nullopt;
        if (folder == "/work")
            return VolumeSpace{"/run", 1'000'000};
        return VolumeSpace{"/", 2'100'000};
    };
    EXPECT_EQ(spaceShortage({{"/out", 1'000'000}, {"/out2", 1'000'000}}, volumes), std::nullopt)
        << "2 MB and 5 % fit exactly";
    EXPECT_TRUE(spaceShortage({{"/out", 1'000'000}, {"/out2", 1'000'001}}, volumes)) << "one byte more";
    EXPECT_EQ(spaceShortage({{"/out", 1'400'000}, {"/out2", 1'000'000}}, volumes),
              "Not enough free space for this batch in /out: it needs about 2.5 MB, and 2.1 MB is free.");
    EXPECT_EQ(spaceShortage({{"/out", 1'000'000}, {"/work", 1'900'000}}, volumes),
              "Not enough free space for this batch in /work: it needs about 2.0 MB, and 1.0 MB is free.");
    EXPECT_EQ(spaceShortage({{"/unknown", 9'000'000'000}, {"/work", 0}}, volumes), std::nullopt)
        << "unknown space and nothing needed are no reason to refuse";
}

TEST(FreeSpace, AFolderNotMadeYetIsJudgedByItsParent)
{
    const test::TempFolder root;
    const auto space = freeSpaceOnDisk(root.path() + "/not/made/yet");
    ASSERT_TRUE(space);
    EXPECT_EQ(space->volume, freeSpaceOnDisk(root.path())->volume);
}
