// `tavrelune convert` run as a user runs it, on tiny clips with the real
// ffmpeg behind a logging wrapper.
#include "convert_sandbox.h"
#include "support/qt_printers.h"
#include "support/task_helpers.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

using namespace tavrelune::test;

namespace {

// The argv of each command a dry run prints (every other line; the lines
// between say "# output: PATH", which is also the last argument; the size
// forecast ends the list).
QList<QStringList> plannedCommands(const QString& out)
{
    QList<QStringList> commands;
    const QStringList lines = out.split('\n', Qt::SkipEmptyParts).filter(QRegularExpression("^(?!# forecast: )"));
    for (qsizetype i = 0; i < lines.size(); i += 2)
        commands << QVariant(QJsonDocument::fromJson(lines[i].toUtf8()).array().toVariantList()).toStringList();
    return commands;
}

// A real run's arguments as its dry run shows them: the run folder by its
// stand-in name, and the hidden file ffmpeg writes (checked to lie beside
// it) by the final name.
QStringList asPlanned(QStringList argv, const QString& finalPath)
{
    argv.replaceInStrings(QRegularExpression("/run-[0-9a-f]{16}/"), "/run-<instance>/");
    const QFileInfo written(argv.last());
    if (written.path() == QFileInfo(finalPath).path()
        && written.fileName().contains(QRegularExpression("^\\.tavrelune-[0-9a-f]{16}\\.mp4$")))
        argv.last() = finalPath;
    return argv;
}

// The average colour of a video's first frame, as "r g b" (0-255).
QList<int> averageColour(const QString& path)
{
    const ToolResult result = runTool("ffmpeg", {"-v", "error", "-i", path, "-frames:v", "1", "-vf",
                                                 "scale=1:1:flags=area", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    if (result.out.size() != 3)
        return {};
    return {uchar(result.out[0]), uchar(result.out[1]), uchar(result.out[2])};
}

double videoSeconds(const QString& path)
{
    return probeEntry(path, "duration").toDouble();
}

const double oneFrame = 0.041;  // at 25 fps, with room for rounding

}  // namespace

TEST(ConvertCommand, DryRunPrintsTheExactCommandAndTouchesNothing)
{
    Sandbox sandbox;
    const QString clip = sandbox.clip("a.mov");
    const QString out = sandbox.file("delivery");
    const CommandRun run = sandbox.run({"--dry-run", "--codec", "h264", "--quality", "balanced", "--remove-audio",
                                 "--filter-chain", "--output", out, clip});
    ASSERT_EQ(run.exitCode, 0) << run.errLines.join('\n').toStdString();
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    const QJsonArray expected{
        sandbox.ffmpeg(), "-nostdin", "-hide_banner", "-loglevel", "error", "-y", "-i", clip,
        "-vf", "scale=in_color_matrix=bt601:in_range=tv,format=gbrp16le,crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0,"
        "format=gbrp16le,scale=out_color_matrix=bt601:out_range=tv,format=yuv420p", "-map", "0:v:0",
        "-c:v", "libx264", "-b:v", "5069k", "-preset", "faster", "-pix_fmt", "yuv420p", "-colorspace", "smpte170m",
        "-color_primaries", "smpte170m", "-color_trc", "smpte170m", "-color_range", "tv", "-sn", "-an",
        "-movflags", "+faststart", "-progress", "pipe:1", "-nostats", out + "/a_graded.mp4"};
    EXPECT_EQ(QJsonDocument::fromJson(lines[0].toUtf8()).array(), expected) << lines[0].toStdString();
    EXPECT_EQ(lines[1], "# output: " + out + "/a_graded.mp4");
    EXPECT_EQ(lines[2], "# forecast: About 634 kB in 1 file") << "5069 kb/s for 1 s, no audio";
    EXPECT_FALSE(QFile::exists(out));
    EXPECT_TRUE(sandbox.loggedConversions().isEmpty());

    // Matching the preview (the default) shows where the baked table would be.
    const CommandRun matched = sandbox.run({"--dry-run", "--exposure", "0.5", "--output", out, clip});
    ASSERT_EQ(matched.exitCode, 0) << matched.errLines.join('\n').toStdString();
    const QString graph = QJsonDocument::fromJson(matched.out.split('\n').first().toUtf8()).array()[9].toString();
    EXPECT_TRUE(graph.contains(":interp=tetrahedral,crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0,format=gbrp16le,")) << graph.toStdString();
    const auto cube = QRegularExpression("lut3d=file=([^:]*/preview-grade-[0-9a-f]{16}\\.cube)").match(graph);
    ASSERT_TRUE(cube.hasMatch()) << graph.toStdString();
    EXPECT_FALSE(QFile::exists(cube.captured(1)));
}

// The job sets trims and grades per clip, a LUT and a watermark; the command
// line overrides the codec and the opacity. The dry run must show exactly
// what the real run then does, including the first (selected) clip's grade,
// which the batch's commit of the live sliders must not reset. Combined, the
// same batch gives one file as long as the trimmed clips together.
TEST(ConvertCommand, JobRunsExactlyAsItsDryRunSaysAlsoCombined)
{
    Sandbox sandbox;
    for (const char* name : {"a.mov", "b.mov", "c.mov"})
        sandbox.clip(name);
    sandbox.folder.write("look.cube", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    sandbox.folder.write("logo.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="80" height="40">)"
                                     R"(<rect width="80" height="40" fill="red" fill-opacity="0.6"/></svg>)");
    const QString job = sandbox.folder.write("job.json", R"({
      "outputFolder": "out",
      "settings": { "codec": "hevc", "quality": "small" },
      "lut": "look.cube",
      "watermark": { "url": "logo.svg", "x": 0.1, "y": 0.1, "widthFraction": 0.25, "opacity": 0.9 },
      "clips": [
        { "url": "a.mov", "exposure": 0.5, "inPoint": 0.2, "outPoint": 0.7 },
        { "url": "b.mov", "saturation": 0.5, "temperature": 30 },
        { "url": "c.mov", "contrast": 1.2, "inPoint": 3, "outPoint": 4 }
      ]
    })");
    const QStringList options{"--job", job, "--codec", "h264", "--watermark-opacity", "0.5", "--filter-chain"};

    const CommandRun dry = sandbox.run(QStringList{"--dry-run"} + options);
    ASSERT_EQ(dry.exitCode, 0) << dry.errLines.join('\n').toStdString();
    const QList<QStringList> plan = plannedCommands(dry.out);
    ASSERT_EQ(plan.size(), 3);
    QStringList outputs;
    for (const QStringList& argv : plan) {
        const QString command = argv.join(' ');
        EXPECT_TRUE(command.contains("-c:v libx264 ")) << "codec from the option";
        EXPECT_TRUE(command.contains("colorchannelmixer=aa=0.5000")) << "opacity from the option";
        EXPECT_TRUE(command.contains("/Tavrelune/run-<instance>/batch-active-lut.cube"));
        outputs << argv.last();
    }
    const QString out = sandbox.file("out");
    EXPECT_EQ(outputs, QStringList({out + "/a_graded.mp4", out + "/b_graded.mp4", out + "/c_graded.mp4"}));
    EXPECT_TRUE(plan[0].join(' ').contains("exposure=exposure=0.5000"));
    EXPECT_TRUE(plan[1].join(' ').contains("saturation=0.5000"));
    const QString c = plan[2].join(' ');
    // Limited to the 1 s clip at 25 fps: frames 22 to 24.
    EXPECT_TRUE(c.contains("-ss 0.879000 ") && c.contains("-t 0.120000 ")) << c.toStdString();

    const CommandRun real = sandbox.run(options);
    ASSERT_EQ(real.exitCode, 0) << real.errLines.join('\n').toStdString();
    EXPECT_EQ(real.lastErrLine(), "Done: converted 3 clips.");
    EXPECT_EQ(real.out, outputs.join('\n') + '\n');
    const QList<QStringList> ran = sandbox.loggedConversions();
    ASSERT_EQ(ran.size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(asPlanned(ran[i], outputs[i]), plan[i].mid(1)) << "clip " << i;
    EXPECT_NEAR(videoSeconds(outputs[0]), 0.5, oneFrame);
    EXPECT_NEAR(videoSeconds(outputs[1]), 1.0, oneFrame);
    EXPECT_NEAR(videoSeconds(outputs[2]), 0.12, oneFrame);

    const CommandRun combined = sandbox.run(options + QStringList{"--combine", "-o", sandbox.file("joined")});
    ASSERT_EQ(combined.exitCode, 0) << combined.errLines.join('\n').toStdString();
    EXPECT_EQ(combined.lastErrLine(), "Done: combined 3 clips into one video.");
    EXPECT_EQ(QDir(sandbox.file("joined")).entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(combined.out.startsWith(sandbox.file("joined/")) && combined.out.count('\n') == 1);
    EXPECT_NEAR(videoSeconds(combined.out.trimmed()), 0.5 + 1.0 + 0.12, oneFrame);
}

// A camera clip whose sound is in its second and third tracks, alone and
// joined with a one-track clip: every track is kept (each part is checked
// for three), and the silent first track is named.
TEST(ConvertCommand, EveryAudioTrackIsKeptAndASilentFirstTrackNamed)
{
    Sandbox sandbox;
    const QString camera = sandbox.clip(
        "camera.mov", {.seconds = 0.5, .audioCodec = "pcm_s16le",
                       .audioTracks = {"anullsrc=channel_layout=mono:sample_rate=48000",
                                       "sine=frequency=440:sample_rate=48000", "sine=frequency=880:sample_rate=48000"}});
    const QString phone = sandbox.clip("phone.mov", {.seconds = 0.5});
    const CommandRun alone = sandbox.run({"--codec", "h264", "-o", sandbox.file("out"), camera, phone});
    ASSERT_EQ(alone.exitCode, 0) << alone.errLines.join('\n').toStdString();
    EXPECT_EQ(alone.lastErrLine(),
              "Done: converted 2 clips. The first audio track is silent in camera.mov; the other tracks were kept.");
    const QStringList files = alone.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(audioStreamCount(files[0]), 3);
    EXPECT_EQ(audioStreamCount(files[1]), 1);

    const CommandRun joined = sandbox.run({"--codec", "h264", "--combine", "-o", sandbox.file("joined"), phone, camera});
    ASSERT_EQ(joined.exitCode, 0) << joined.errLines.join('\n').toStdString();
    EXPECT_EQ(audioStreamCount(joined.out.trimmed()), 3);
}

TEST(ConvertCommand, BadInputIsStatusTwoWithOneLine)
{
    Sandbox sandbox;
    const QString clip = sandbox.clip("a.mov", {.audio = false});
    sandbox.folder.write("look.cube", "LUT_3D_SIZE 2\n");
    sandbox.folder.write("notes.txt", "x");
    sandbox.folder.write("broken.svg", "not an image");
    sandbox.folder.write("bad.json", R"({ "settings": { "bitrate": 5 } })");
    sandbox.folder.write("notes.mov", "not a movie");
    sandbox.clip("voice.mp4", {.videoCodec = ""});
    struct Case {
        QStringList arguments;
        QString message;
    };
    const QList<Case> cases{
        {{"--codec", "av1", clip}, "--codec: 'av1' is not h264 or hevc (see 'tavrelune convert --help')"},
        {{"--fast", clip}, "Unknown option 'fast' (see 'tavrelune convert --help')"},
        {{"missing.mov"}, sandbox.file("missing.mov") + ": no such file"},
        {{"notes.txt", clip}, sandbox.file("notes.txt") + ": not a video, LUT (.cube) or watermark (PNG, SVG) file"},
        {{"look.cube"}, "no video clips given"},
        {{"--watermark-x", "0.5", clip},
         "watermark placement given, but no watermark image (a PNG or SVG FILE, or watermark.url in the job)"},
        {{"--job", "bad.json", clip}, "bad.json: settings.bitrate: unknown key"},
        {{"--job", "none.json", clip}, "none.json: cannot read the job file (No such file or directory)"},
        {{"broken.svg", clip}, "Could not read that watermark: it is not an image in a format this system reads. "
                                 "Use a PNG or SVG with transparency."},
        {{"--exposure", "5", clip}, "--exposure: 5 is outside -3 to 3 (see 'tavrelune convert --help')"},
        {{"look.cube", clip}, sandbox.file("look.cube") + ": The LUT data is incomplete."},
        {{clip, "voice.mp4"}, sandbox.file("voice.mp4") + ": unsupported input: no video stream"},
        {{"notes.mov", clip},
         sandbox.file("notes.mov") + ": unsupported input: Invalid data found when processing input (moov atom not found)"},
    };
    for (const Case& c : cases) {
        const CommandRun run = sandbox.run(c.arguments);
        EXPECT_EQ(run.exitCode, 2) << c.arguments.join(' ').toStdString();
        EXPECT_EQ(run.errLines, QStringList{"tavrelune convert: " + c.message});
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_TRUE(sandbox.loggedConversions().isEmpty());
}

TEST(ConvertCommand, AFailingClipGivesStatusOneAfterTheOthersAreConverted)
{
    Sandbox sandbox;
    for (const char* name : {"a.mov", "fail.mov", "c.mov"})
        sandbox.clip(name, {.audio = false});
    const CommandRun run = sandbox.run({"--codec", "h264", "-o", sandbox.file("out"), "a.mov", "fail.mov", "c.mov"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.lastErrLine(), "Finished: 2 succeeded, 1 failed.");
    EXPECT_TRUE(run.errLines.contains("tavrelune convert: fail.mov: simulated encoder failure"))
        << run.errLines.join('\n').toStdString();
    EXPECT_EQ(run.out, sandbox.file("out/a_graded.mp4") + "\n" + sandbox.file("out/c_graded.mp4") + "\n");
}

TEST(ConvertCommand, OutputFailingItsCheckIsReportedAndRemoved)
{
    Sandbox sandbox;
    sandbox.clip("short.mov", {.audio = false});
    const CommandRun run = sandbox.run({"--codec", "h264", "-o", sandbox.file("out"), "short.mov"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errLines.filter("tavrelune convert: short.mov: Output check failed: expected 1.0 s, the file holds 0.")
                    .size() == 1)
        << run.errLines.join('\n').toStdString();
    EXPECT_TRUE(QDir(sandbox.file("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
}

// Ctrl-C, the terminal closing and the reader of the output going away all
// stop the batch the same way: its ffmpeg ends, and neither the unfinished
// file nor its claim on the name is left behind.
TEST(ConvertCommand, InterruptHangupAndBrokenPipeStopTheBatchAndItsFfmpeg)
{
    Sandbox sandbox;
    const QString clip = sandbox.clip("long.mov", {.width = 640, .height = 360, .seconds = 20, .audio = false});
    for (const auto& [signalNumber, status] : {std::pair{SIGINT, 130}, {SIGHUP, 129}, {SIGPIPE, 141}}) {
        QFile::remove(sandbox.file("log/pid"));
        QProcess process;
        sandbox.start(process, {"--codec", "h264", "-o", sandbox.file("out"), clip});
        ASSERT_TRUE(process.waitForStarted());

        // Signal once ffmpeg is converting.
        QFile pidFile(sandbox.file("log/pid"));
        for (int wait = 0; wait < 1500 && !pidFile.exists(); ++wait)
            QThread::msleep(20);
        ASSERT_TRUE(pidFile.open(QIODevice::ReadOnly)) << "ffmpeg never started";
        QThread::msleep(300);
        const qint64 ffmpegPid = pidFile.readAll().trimmed().toLongLong();
        ASSERT_TRUE(processExists(ffmpegPid)) << "the conversion ended before the signal";
        ::kill(static_cast<pid_t>(process.processId()), signalNumber);

        const CommandRun run = Sandbox::finish(process);
        EXPECT_EQ(run.exitCode, status) << strsignal(signalNumber);
        EXPECT_EQ(run.lastErrLine(), "Conversion stopped.");
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_FALSE(processExists(ffmpegPid)) << "ffmpeg outlived the command";
        EXPECT_TRUE(entries(sandbox.file("out")).isEmpty()) << entries(sandbox.file("out")).join(' ').toStdString();
    }
    EXPECT_TRUE(entries(sandbox.file("runtime/Tavrelune")).isEmpty()) << "run folders removed at exit";

    // Killed outright, a run leaves its claim on the name and ffmpeg's
    // unfinished file; the next start releases both.
    QFile::remove(sandbox.file("log/pid"));
    QProcess killed;
    sandbox.start(killed, {"--codec", "h264", "-o", sandbox.file("out"), clip});
    QFile pidFile(sandbox.file("log/pid"));
    for (int wait = 0; wait < 1500 && !pidFile.exists(); ++wait)
        QThread::msleep(20);
    ASSERT_TRUE(pidFile.open(QIODevice::ReadOnly)) << "ffmpeg never started";
    QThread::msleep(300);
    const qint64 ffmpegPid = pidFile.readAll().trimmed().toLongLong();
    ::kill(static_cast<pid_t>(killed.processId()), SIGKILL);
    killed.waitForFinished();
    for (int wait = 0; wait < 500 && processExists(ffmpegPid); ++wait)
        QThread::msleep(20);
    ASSERT_EQ(entries(sandbox.file("out")).size(), 2);
    const CommandRun next = sandbox.run({"--dry-run", "-o", sandbox.file("out"), clip});
    EXPECT_EQ(next.out.split('\n', Qt::SkipEmptyParts).value(1), "# output: " + sandbox.file("out/long_graded.mp4"));
    EXPECT_TRUE(entries(sandbox.file("out")).isEmpty()) << entries(sandbox.file("out")).join(' ').toStdString();
}

// Two commands at once, sharing the working folder and the output folder,
// with different looks: each keeps its own look and its own file names.
TEST(ConvertCommand, TwoRunsAtOnceKeepTheirOwnLookAndNames)
{
    Sandbox sandbox;
    const QStringList clips{sandbox.clip("a.mov", {.audio = false}), sandbox.clip("b.mov", {.audio = false})};
    const auto solidCube = [](const QByteArray& rgb) {
        QByteArray text = "LUT_3D_SIZE 2\n";
        for (int i = 0; i < 8; ++i)
            text += rgb + "\n";
        return text;
    };
    const QString red = sandbox.folder.write("red.cube", solidCube("1 0 0"));
    const QString blue = sandbox.folder.write("blue.cube", solidCube("0 0 1"));
    const QString out = sandbox.file("out");
    QProcess redRun;
    QProcess blueRun;
    sandbox.start(redRun, QStringList{"--codec", "h264", "-o", out, red} + clips);
    sandbox.start(blueRun, QStringList{"--codec", "h264", "-o", out, blue} + clips);
    const CommandRun redResult = Sandbox::finish(redRun);
    const CommandRun blueResult = Sandbox::finish(blueRun);
    ASSERT_EQ(redResult.exitCode, 0) << redResult.errLines.join('\n').toStdString();
    ASSERT_EQ(blueResult.exitCode, 0) << blueResult.errLines.join('\n').toStdString();

    const QStringList redFiles = redResult.out.split('\n', Qt::SkipEmptyParts);
    const QStringList blueFiles = blueResult.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(redFiles.size(), 2);
    ASSERT_EQ(blueFiles.size(), 2);
    EXPECT_EQ(entries(out), QStringList({"a_graded-2.mp4", "a_graded.mp4", "b_graded-2.mp4", "b_graded.mp4"}));
    for (const QString& file : redFiles + blueFiles) {
        const QList<int> colour = averageColour(file);
        ASSERT_EQ(colour.size(), 3) << file.toStdString();
        const bool isRed = colour[0] > 200 && colour[2] < 60;
        const bool isBlue = colour[2] > 200 && colour[0] < 60;
        EXPECT_TRUE(redFiles.contains(file) ? isRed : isBlue) << file.toStdString() << " has "
                                                              << colour[0] << " " << colour[1] << " " << colour[2];
    }
}

// A name with a line feed stays one line of output, as a JSON string; a
// list of written files that cannot be written is an error, not a success.
TEST(ConvertCommand, OddNamesAreQuotedAndAFailedOutputWriteIsAnError)
{
    Sandbox sandbox;
    const QString clip = sandbox.clip("two\nlines.mov", {.seconds = 0.3, .audio = false});
    const QString out = sandbox.file("out");
    const QString quoted = "\"" + out + "/two\\nlines_graded.mp4\"";

    const CommandRun dry = sandbox.run({"--dry-run", "-o", out, clip});
    ASSERT_EQ(dry.exitCode, 0) << dry.errLines.join('\n').toStdString();
    EXPECT_EQ(dry.out.split('\n', Qt::SkipEmptyParts).value(1), "# output: " + quoted);

    const CommandRun real = sandbox.run({"--codec", "h264", "-o", out, clip});
    ASSERT_EQ(real.exitCode, 0) << real.errLines.join('\n').toStdString();
    EXPECT_EQ(real.out, quoted + "\n");

    QProcess full;
    full.setStandardOutputFile("/dev/full");
    sandbox.start(full, {"--codec", "h264", "-o", out, clip});
    const CommandRun unlisted = Sandbox::finish(full);
    EXPECT_EQ(unlisted.exitCode, 1);
    EXPECT_EQ(unlisted.lastErrLine(), "tavrelune convert: could not write to standard output: No space left on device");
    EXPECT_TRUE(QFile::exists(out + "/two\nlines_graded-2.mp4")) << "the file itself was written";
}

TEST(ConvertCommand, FileWhoseNameIsNotUtf8IsConvertedUnderItsReadableName)
{
    Sandbox sandbox;
    sandbox.clip("plain.mov", {.audio = false});
    const QByteArray odd = QFile::encodeName(sandbox.file("clip")) + "\xff.mov";
    ASSERT_EQ(::rename(QFile::encodeName(sandbox.file("plain.mov")).constData(), odd.constData()), 0);

    // Only a shell can hand the program bytes that are not UTF-8.
    QProcess process;
    sandbox.start(process, "/bin/sh",
                  {"-c", R"sh(exec "$0" convert --codec h264 -o out "$(printf 'clip\377.mov')")sh", TAVRELUNE_BINARY});
    const CommandRun run = Sandbox::finish(process);
    EXPECT_EQ(run.exitCode, 0) << run.errLines.join('\n').toStdString();
    const QString output = sandbox.file("out/clip") + QChar(0xFFFD) + "_graded.mp4";
    EXPECT_EQ(run.out, output + "\n");
    EXPECT_TRUE(QFile::exists(output));
    EXPECT_TRUE(QDir(sandbox.file("tmp")).isEmpty()) << "the stand-in link is gone";
}
