// `tavrelune convert` stopping early: Ctrl-C while the clips are still
// being probed.
#include "convert_sandbox.h"
#include "qt_printers.h"
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
