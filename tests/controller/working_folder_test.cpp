#include "controller/working_folder.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrelune;
using tavrelune::test::TempFolder;

TEST(WorkingFolder, PrefersRuntimeThenCacheAndSkipsPathsFfmpegCannotRead)
{
    WorkingFolder::Environment environment{"/run/user/1000", "/home/me/.cache", "/home/me", "/tmp", 1000};
    EXPECT_EQ(WorkingFolder::candidates(environment).first(), "/run/user/1000/Tavrelune");

    environment.runtimeDir.clear();
    EXPECT_EQ(WorkingFolder::candidates(environment).first(), "/home/me/.cache/Tavrelune");

    environment.runtimeDir = "/run/odd:dir";
    environment.cacheDir = "/home/it's/.cache";
    environment.homeDir = "/home/back\\slash";
    const QStringList safe = WorkingFolder::candidates(environment);
    EXPECT_EQ(safe.first(), "/tmp/tavrelune-1000");
    for (const QString& path : safe)
        EXPECT_TRUE(WorkingFolder::isFilterSafe(path)) << path.toStdString();
}

TEST(WorkingFolder, PreparesAPrivateFolderAndRecoversFromStaleState)
{
    TempFolder root;
    const QString path = root.path() + "/Tavrelune";
    root.write("Tavrelune", "a stale file where the folder belongs");
    ASSERT_TRUE(WorkingFolder::prepare(path, getuid()));
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777, 0700);

    ::chmod(QFile::encodeName(path).constData(), 0777);
    root.write("Tavrelune/active-lut.cube", "left over");
    ASSERT_TRUE(WorkingFolder::prepare(path, getuid())) << "an existing folder is reused";
    ::stat(QFile::encodeName(path).constData(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0700) << "and made private again";

    EXPECT_FALSE(WorkingFolder::prepare(path, getuid() + 1)) << "someone else's folder is refused";

    WorkingFolder::Environment environment{root.path() + "/run", "", "", root.path(), getuid()};
    EXPECT_EQ(WorkingFolder::choose(environment), root.path() + "/run/Tavrelune");
}
