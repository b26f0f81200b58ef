// The window as a process of its own: asked to end by a signal, it closes the
// orderly way and leaves no working files behind.
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <csignal>
#include <gtest/gtest.h>

using namespace tavrelune::test;

namespace {

QStringList runFolders(const QString& workingFolder)
{
    return QDir(workingFolder).entryList({"run-*"}, QDir::Dirs | QDir::Hidden);
}

}  // namespace

TEST(WindowProcess, TerminateAndHangupCloseTheWindowAndRemoveItsWorkingFiles)
{
    for (const auto& [signalNumber, status] : {std::pair{SIGTERM, 130}, {SIGHUP, 129}}) {
        TempFolder folder;
        for (const char* name : {"home", "runtime", "cache"})
            QDir().mkpath(folder.file(name));
        QFile::setPermissions(folder.file("runtime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        makeClip(folder.file("clip.mp4"));
        const QString workingFolder = folder.file("runtime/Tavrelune");

        QProcess window;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", folder.file("home"));
        environment.insert("XDG_RUNTIME_DIR", folder.file("runtime"));
        environment.insert("XDG_CACHE_HOME", folder.file("cache"));
        window.setProcessEnvironment(environment);
        window.start(TAVRELUNE_BINARY, {folder.file("clip.mp4")});
        ASSERT_TRUE(window.waitForStarted());
        for (int wait = 0; wait < 500 && runFolders(workingFolder).isEmpty(); ++wait)
            QThread::msleep(20);
        ASSERT_EQ(runFolders(workingFolder).size(), 1) << "the window never started";
        QThread::msleep(500);  // the clip is being read and previewed

        ::kill(static_cast<pid_t>(window.processId()), signalNumber);
        ASSERT_TRUE(window.waitForFinished(30000));
        EXPECT_EQ(window.exitStatus(), QProcess::NormalExit) << strsignal(signalNumber);
        EXPECT_EQ(window.exitCode(), status) << strsignal(signalNumber);
        EXPECT_TRUE(runFolders(workingFolder).isEmpty()) << strsignal(signalNumber);
    }
}
