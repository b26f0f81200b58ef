// `tavrelune convert` stopping early, and the standard streams it is given:
// a reader of the list of files that goes away, Ctrl-C while the clips are
// still being probed, and streams closed before it starts.
#include "convert_sandbox.h"
#include "support/qt_printers.h"
#include "support/task_helpers.h"

#include <QThread>
#include <gtest/gtest.h>

#include <csignal>

using namespace tavrelune::test;

namespace {

QString contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

// Waits (at most 30 s) for a file some child writes.
bool appears(const QString& path)
{
    for (int wait = 0; wait < 1500 && !QFile::exists(path); ++wait)
        QThread::msleep(20);
    return QFile::exists(path);
}

}  // namespace

// `convert ... | head -n 1`: the first file is listed as soon as it is
// written; the reader then leaves, and the next line written stops the
// batch there instead of at its end.
TEST(ConvertCommandStops, AReaderLeavingAfterTheFirstFileStopsTheBatch)
{
    Sandbox sandbox;
    for (const char* name : {"a.mov", "wait.mov", "c.mov"})
        sandbox.clip(name, {.seconds = 0.3, .audio = false});
    // wait.mov converts only once the reader has gone (log/go).
    QProcess pipeline;
    sandbox.start(pipeline, "/bin/bash",
                  {"-c",
                   R"sh("$0" convert --codec h264 -o out a.mov wait.mov c.mov |
                        { head -n 1 > first; exec 0<&-; touch log/go; }
                        echo "${PIPESTATUS[0]}" > status)sh",
                   TAVRELUNE_BINARY});
    const CommandRun run = Sandbox::finish(pipeline);
    ASSERT_EQ(run.exitCode, 0) << run.errLines.join('\n').toStdString();
    EXPECT_EQ(contents(sandbox.file("status")), "141");
    EXPECT_EQ(contents(sandbox.file("first")), sandbox.file("out/a_graded.mp4"));
    EXPECT_EQ(run.lastErrLine(), "Conversion stopped.");
    EXPECT_EQ(sandbox.loggedConversions().size(), 2) << "c.mov is not attempted";
    EXPECT_EQ(entries(sandbox.file("out")), QStringList({"a_graded.mp4", "wait_graded.mp4"}));
}

// Probing many files can take long; Ctrl-C ends it at once, with the
// ffprobe that was running.
TEST(ConvertCommandStops, CtrlCWhileProbingEndsTheCommandAndItsFfprobe)
{
    Sandbox sandbox;
    QFile::remove(sandbox.file("tools/ffprobe"));
    writeFakeTool(sandbox.file("tools"), "ffprobe",
                  QString("echo $$ > '%1/probe-pid'\nexec sleep 60").arg(sandbox.file("log")));
    sandbox.folder.write("a.mov", "x");
    sandbox.folder.write("b.mov", "x");
    QProcess process;
    sandbox.start(process, {"-o", sandbox.file("out"), "a.mov", "b.mov"});
    ASSERT_TRUE(appears(sandbox.file("log/probe-pid"))) << "ffprobe never started";
    const qint64 probePid = contents(sandbox.file("log/probe-pid")).toLongLong();
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);

    const CommandRun run = Sandbox::finish(process);
    EXPECT_EQ(run.exitCode, 130) << run.errLines.join('\n').toStdString();
    EXPECT_FALSE(processExists(probePid)) << "ffprobe outlived the command";
    EXPECT_FALSE(QFile::exists(sandbox.file("out")));
}

// Started with its standard streams closed, the command writes the list of
// files nowhere, not into whatever it opened first.
TEST(ConvertCommandStops, ClosedStandardStreamsDoNotDisturbTheBatch)
{
    Sandbox sandbox;
    sandbox.clip("a.mov", {.seconds = 0.3, .audio = false});
    QProcess process;
    sandbox.start(process, "/bin/sh",
                  {"-c", R"sh(exec "$0" convert --codec h264 -o out a.mov <&- >&- 2>&-)sh", TAVRELUNE_BINARY});
    const CommandRun run = Sandbox::finish(process);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(entries(sandbox.file("out")), QStringList{"a_graded.mp4"});
}
