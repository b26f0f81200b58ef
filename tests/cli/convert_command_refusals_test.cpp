// What `tavrelune convert` (and `probe`) refuse before any clip is touched:
// one line on standard error, status 2, nothing converted.
#include "convert_sandbox.h"
#include "qt_printers.h"

#include <gtest/gtest.h>

using namespace tavrelune::test;

// A missing ffprobe is the tool's fault, named once, not each input's.
TEST(ConvertCommandRefusals, AMissingFfprobeIsNamedOnce)
{
    Sandbox sandbox;
    sandbox.clip("a.mov", {.seconds = 0.3, .audio = false});
    sandbox.clip("b.mov", {.seconds = 0.3, .audio = false});
    QFile::remove(sandbox.file("tools/ffprobe"));
    sandbox.extraEnvironment["PATH"] = sandbox.file("tools");
    const QString missing = "ffprobe was not found. Install FFmpeg (for example the Debian package ffmpeg).";
    for (const QString command : {"convert", "probe"}) {
        QProcess process;
        sandbox.start(process, TAVRELUNE_BINARY, {command, "a.mov", "b.mov"});
        const CommandRun run = Sandbox::finish(process);
        EXPECT_EQ(run.exitCode, 2) << command.toStdString();
        EXPECT_EQ(run.errLines, QStringList{"tavrelune " + command + ": " + missing});
        EXPECT_TRUE(run.out.isEmpty());
    }
}
