#include "controller/output_claim.h"
#include "model/error.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace tavrelune;
using tavrelune::test::TempFolder;

namespace {

QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

OutputClaim claimFor(const QString& folder)
{
    return OutputClaim::claim([&folder](const OutputNaming::PathTaken& taken) {
        return OutputNaming::uniqueOutputPath("/card/x.mov", folder, taken);
    });
}

}  // namespace

TEST(OutputClaim, TakenNamesAndPlantedSymlinksAreSkippedAndOnlyAFinishedFileIsPublished)
{
    TempFolder root;
    root.write("x_graded.mp4", "the user's file");
    QFile::link(root.file("victim.mp4"), root.file("x_graded-2.mp4"));  // dangling

    OutputClaim claim = claimFor(root.path());
    EXPECT_EQ(claim.finalPath(), root.file("x_graded-3.mp4"));
    EXPECT_EQ(contents(claim.finalPath()), "") << "an empty placeholder holds the name";
    EXPECT_TRUE(QDir(claim.temporaryPath()).dirName().contains(QRegularExpression("^\\.tavrelune-[0-9a-f]{16}\\.mp4$")));
    EXPECT_EQ(QFileInfo(claim.temporaryPath()).path(), root.path());
    EXPECT_FALSE(QFileInfo::exists(root.file("victim.mp4"))) << "the symlink was not followed";

    OutputClaim second = claimFor(root.path());
    EXPECT_EQ(second.finalPath(), root.file("x_graded-4.mp4")) << "a claimed name is taken";

    root.write(QDir(claim.temporaryPath()).dirName(), "converted");
    claim.commit();
    EXPECT_EQ(contents(root.file("x_graded-3.mp4")), "converted");
    EXPECT_EQ(contents(root.file("x_graded.mp4")), "the user's file");
    EXPECT_EQ(entries(root.path()).size(), 5) << "x, -2, -3, and the second claim's two files";
}

TEST(OutputClaim, AnUnfinishedClaimRemovesOnlyWhatItCreated)
{
    TempFolder root;
    {
        OutputClaim claim = claimFor(root.path());
        root.write(QDir(claim.temporaryPath()).dirName(), "half a file");
    }
    EXPECT_TRUE(entries(root.path()).isEmpty());

    // Another program puts its own file over the placeholder meanwhile.
    {
        OutputClaim claim = claimFor(root.path());
        root.write("mine.mp4", "the user's file");
        ASSERT_TRUE(QFile::remove(claim.finalPath()) && QFile::rename(root.file("mine.mp4"), claim.finalPath()));
        root.write(QDir(claim.temporaryPath()).dirName(), "converted");
        EXPECT_THROW(claim.commit(), PlatformError);
    }
    EXPECT_EQ(entries(root.path()), QStringList{"x_graded.mp4"});
    EXPECT_EQ(contents(root.file("x_graded.mp4")), "the user's file");

    try {
        claimFor(root.file("missing"));
        ADD_FAILURE() << "claimed in a missing folder";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.description(),
                  "Could not create " + root.file("missing/x_graded.mp4") + ": No such file or directory");
    }
}
