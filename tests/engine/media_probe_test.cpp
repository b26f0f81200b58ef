// Probing clips that real ffmpeg makes, with the real ffprobe.
#include "engine/ffmpeg_service.h"
#include "engine/probe_report.h"
#include "support/media_fixtures.h"
#include "support/task_helpers.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class MediaProbeTest : public ::testing::Test {
protected:
    MediaInfo probe(const QString& path) { return waitForTask(service.probe(path)); }

    TempFolder folder;
    FFmpegService service;
};

}  // namespace

TEST_F(MediaProbeTest, VideoWithAudioAtNtscRate)
{
    const QString path = folder.file("it's [a] clip, é.mp4");
    makeClip(path, {.width = 320, .height = 180, .rate = "30000/1001", .seconds = 1.0});
    const MediaInfo info = probe(path);
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.height, 180);
    EXPECT_EQ(info.codecName, "h264");
    EXPECT_EQ(info.pixFmt, "yuv420p");
    EXPECT_NEAR(info.fps, 30000.0 / 1001.0, 1e-9);
    EXPECT_TRUE(info.hasAudio);
    EXPECT_NEAR(info.duration, 1.0, 0.1);
}

TEST_F(MediaProbeTest, OddSizeWithoutAudio)
{
    const QString path = folder.file("odd.mkv");
    makeClip(path, {.width = 161, .height = 91, .rate = "24", .audio = false, .videoCodec = "ffv1",
                    .pattern = "testsrc"});
    const MediaInfo info = probe(path);
    EXPECT_EQ(info.width, 161);
    EXPECT_EQ(info.height, 91);
    EXPECT_EQ(info.codecName, "ffv1");
    EXPECT_EQ(info.fps, 24);
    EXPECT_FALSE(info.hasAudio);
}

// A recording saved as it streamed (or cut off) states no length: the
// packets give it.
TEST_F(MediaProbeTest, LengthOfAFileThatStatesNoneComesFromItsPackets)
{
    const QString path = folder.file("streamed.mkv");
    const ToolResult made = runTool("bash", {"-c", "ffmpeg -v error -f lavfi -i testsrc2=size=160x120:rate=25:duration=2 "
                                                   "-c:v libx264 -preset ultrafast -f matroska - > '" + path + "'"});
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    EXPECT_NEAR(probe(path).duration, 2.0, 0.1);
    EXPECT_EQ(ProbeReport::durationFromPackets("1.500000,0.040000\n1.460000,0.040000\nN/A,N/A\n", 0.5), 1.04);
}

TEST_F(MediaProbeTest, AudioOnlyFileHasNeutralVideoFacts)
{
    const QString path = folder.file("voice.m4a");
    makeClip(path, {.seconds = 0.5, .videoCodec = ""});
    const MediaInfo info = probe(path);
    EXPECT_TRUE(info.hasAudio);
    EXPECT_EQ(info.width, 0);
    EXPECT_EQ(info.codecName, "unknown");
    EXPECT_EQ(info.fps, 24);
    EXPECT_GT(info.duration, 0.4);
}

TEST_F(MediaProbeTest, NonMediaFileFailsWithFfprobesOwnMessage)
{
    const QString path = folder.write("notes.mov", "this is not a movie\n");
    try {
        probe(path);
        FAIL() << "a text file was accepted";
    } catch (const FFmpegError& error) {
        EXPECT_EQ(error.kind(), FFmpegError::Kind::conversionFailed);
        EXPECT_TRUE(error.description().contains("Invalid data found")) << error.description().toStdString();
    }
}

// MPEG-4 in AVI does not say whether it holds fields: the first frames do.
TEST_F(MediaProbeTest, FieldsAreFoundInAStreamThatDoesNotSayHowItIsStored)
{
    for (const auto& [pattern, fields] : {std::pair{"testsrc2", true}, {"testsrc", false}}) {
        const QString path = folder.file(QString(pattern) + ".avi");
        makeClip(path, {.width = 320, .height = 240, .rate = "50", .seconds = 1.0, .audio = false,
                        .videoCodec = "mpeg4", .pattern = pattern,
                        .filter = fields ? "tinterlace=interleave_top,fieldorder=tff" : "fps=25",
                        .videoOptions = {"-q:v", "3"}});
        ASSERT_EQ(probeEntry(path, "field_order"), "unknown");
        EXPECT_EQ(probe(path).interlaced, fields) << pattern;
    }
}
