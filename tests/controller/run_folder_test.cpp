#include "controller/run_folder.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

using namespace tavrelune;
using tavrelune::test::TempFolder;

namespace {

QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

void makeOld(const QString& path)
{
    struct utimbuf times = {1000, 1000};
    ::utime(QFile::encodeName(path).constData(), &times);
}

}  // namespace

TEST(RunFolder, EachInstanceGetsItsOwnPrivateFolderRemovedWhenItGoes)
{
    TempFolder root;
    auto first = RunFolder::create(root.path(), "run-");
    auto second = RunFolder::create(root.path(), "run-");
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->path(), second->path());
    EXPECT_TRUE(QDir(first->path()).dirName().contains(QRegularExpression("^run-[0-9a-f]{16}$")));
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(first->path()).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700);

    root.write(QDir(first->path()).dirName() + "/active-lut.cube", "staged");
    const QString firstPath = first->path();
    RunFolder moved = std::move(*first);
    first.reset();
    EXPECT_TRUE(QFileInfo::exists(firstPath)) << "a move hands the folder over";
    { RunFolder gone = std::move(moved); }
    EXPECT_FALSE(QFileInfo::exists(firstPath));
    EXPECT_EQ(entries(root.path()), QStringList{QDir(second->path()).dirName()});

    QString error;
    EXPECT_FALSE(RunFolder::create(root.file("missing"), "run-", &error));
    EXPECT_TRUE(error.startsWith("Could not create a folder in " + root.file("missing") + ": No such file"))
        << error.toStdString();
}

// Folders of instances that died (lock free, or no lock left and old) go;
// a live instance's folder, a young one still being made and anything
// else stay.
TEST(RunFolder, SweepRemovesOnlyFoldersOfInstancesThatNoLongerRun)
{
    TempFolder root;
    const auto live = RunFolder::create(root.path(), "run-");
    ASSERT_TRUE(live);
    root.write("run-dead/lock", "");
    root.write("run-dead/active-lut.cube", "left over");
    QDir().mkpath(root.file("run-crashed-in-removal"));
    makeOld(root.file("run-crashed-in-removal"));
    QDir().mkpath(root.file("run-being-made"));
    root.write("user-notes/lock", "");
    QFile::link(root.file("user-notes"), root.file("run-link"));

    EXPECT_EQ(RunFolder::sweepStale(root.path(), "run-"), 2);
    QStringList kept{"run-being-made", QDir(live->path()).dirName(), "run-link", "user-notes"};
    kept.sort();
    EXPECT_EQ(entries(root.path()), kept)
        << entries(root.path()).join(' ').toStdString();
    EXPECT_TRUE(QFileInfo::exists(live->path() + "/lock"));
}
