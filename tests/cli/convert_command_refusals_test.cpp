// What `tavrelune convert` (and `probe`) refuse before any clip is touched:
// one line on standard error, status 2, nothing converted.
#include "convert_sandbox.h"
#include "support/qt_printers.h"

#include <gtest/gtest.h>

using namespace tavrelune::test;

// A file where the output folder would be, or where one of the folders
// above it would be made, is found before the batch rather than by every
// clip.
TEST(ConvertCommandRefusals, AnOutputFolderThatIsAFile)
{
    Sandbox sandbox;
    sandbox.clip("a.mov", {.seconds = 0.3, .audio = false});
    const QString taken = sandbox.folder.write("taken", "x");
    const QString job = sandbox.folder.write("job.json", R"({ "outputFolder": "taken/sub" })");
    const struct {
        QStringList arguments;
        QString message;
    } cases[] = {
        {{"-o", taken, "a.mov"}, taken + ": not a folder"},
        {{"--job", job, "a.mov"}, taken + "/sub: " + taken + " is not a folder"},
    };
    for (const auto& c : cases) {
        const CommandRun run = sandbox.run(c.arguments);
        EXPECT_EQ(run.exitCode, 2) << c.arguments.join(' ').toStdString();
        EXPECT_EQ(run.errLines, QStringList{"tavrelune convert: " + c.message});
    }
    EXPECT_TRUE(sandbox.loggedConversions().isEmpty());
}

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
