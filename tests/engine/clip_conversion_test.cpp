// Real conversions of tiny generated clips through the real ffmpeg.
#include "export_fixtures.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

class ClipConversionTest : public ::testing::Test {
protected:
    ClipConversionTest() { service.pinEncoders(test::quickSoftwareEncoders()); }

    // Every character ffmpeg's parsers treat specially, plus non-ASCII:
    // paths are plain arguments and must arrive untouched.
    QString file(const QString& name) const
    {
        QDir(folder.path()).mkpath("it's a: test, [x]; back\\slash é");
        return folder.file("it's a: test, [x]; back\\slash é/" + name);
    }

    ClipConversion job(const test::ClipSpec& spec)
    {
        test::makeClip(file("in.mov"), spec);
        ClipConversion result{.input = file("in.mov"), .output = file("out.mp4"), .duration = spec.seconds,
                              .width = spec.width, .height = spec.height, .hasAudio = spec.audio};
        result.settings.codec = VideoCodec::h264;
        return result;
    }

    QString convert(const ClipConversion& conversion)
    {
        const auto failure = test::failureOf(
            service.convertClip(conversion, [this](double f) { progress.push_back(f); }, {}));
        return failure ? failure->description() : "";
    }

    QString probe(const QString& entry, const QString& stream = "v:0")
    {
        return test::probeEntry(file("out.mp4"), entry, stream);
    }

    test::TempFolder folder;
    FFmpegService service;
    std::vector<double> progress;
};

TEST_F(ClipConversionTest, AudioIsCopiedRetriedAsAacOrRemoved)
{
    EXPECT_EQ(convert(job({.seconds = 1.0})), "");
    EXPECT_EQ(probe("codec_name", "a:0"), "aac");
    EXPECT_NEAR(probe("duration").toDouble(), 1.0, 0.04);
    ASSERT_FALSE(progress.empty());
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()) && progress.front() >= 0);
    EXPECT_NEAR(progress.back(), 1.0, 0.05);

    // MP4 cannot carry PCM: the copy fails and the retry re-encodes.
    ClipConversion camera = job({.seconds = 0.5, .audioCodec = "pcm_s16le"});
    EXPECT_EQ(convert(camera), "");
    EXPECT_EQ(probe("codec_name", "a:0"), "aac");
    camera.settings.removeAudio = true;
    EXPECT_EQ(convert(camera), "");
    EXPECT_EQ(test::audioStreamCount(camera.output), 0);
}

// A trimmed silent clip as a part of a combined export: fitted to 320x240
// at 30 fps, with a silent track that ends with the video.
TEST_F(ClipConversionTest, TrimmedHevcPartIsNormalizedWithSilence)
{
    ClipConversion part = job({.seconds = 2.0, .audio = false});
    part.settings.codec = VideoCodec::hevc;
    part.trim = true;
    part.startTime = 0.6;
    part.duration = 0.8;
    part.normalization = VideoNormalization{320, 240, 30, true};
    EXPECT_EQ(convert(part), "");
    EXPECT_EQ(probe("codec_tag_string") + probe("width") + "x" + probe("height") + "@" + probe("r_frame_rate"),
              "hvc1320x240@30/1");
    EXPECT_NEAR(probe("duration").toDouble(), 0.8, 0.04);
    EXPECT_NEAR(probe("duration", "format").toDouble(), 0.8, 0.05);
    EXPECT_EQ(probe("sample_rate", "a:0"), "48000");
}

// A black clip through an inverting LUT turns white; the red watermark on
// top is not graded and covers 80x40 pixels from (160, 90).
TEST_F(ClipConversionTest, LutAndWatermarkFromAwkwardPaths)
{
    ClipConversion graded = job({.width = 320, .height = 180, .seconds = 0.5, .audio = false, .pattern = "color"});
    // Colons, quotes and backslashes never reach staged LUT paths (see
    // FFmpegService::escapeFilterPath).
    QDir(folder.path()).mkpath("looks, [v2]; été");
    QFile lut(folder.file("looks, [v2]; été/invert.cube"));
    ASSERT_TRUE(lut.open(QIODevice::WriteOnly));
    lut.write("LUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 0\n1 0 0\n0 0 0\n");
    lut.close();
    QImage mark(40, 20, QImage::Format_ARGB32);
    mark.fill(Qt::red);
    ASSERT_TRUE(mark.save(file("mark.png")));
    graded.lutPath = lut.fileName();
    graded.watermark = WatermarkOverlay{file("mark.png"), 0.5, 0.5, 0.25, 1.0, 2.0};
    EXPECT_EQ(convert(graded), "");

    ASSERT_EQ(test::failureOf(service.extractFrame(graded.output, 0.2, folder.file("f.png"), 320)), std::nullopt);
    const QImage frame(folder.file("f.png"));
    for (const auto& [x, y, red] : {std::tuple{165, 95, true}, {235, 125, true}, {150, 110, false},
                                    {250, 140, false}}) {
        // Red or white, never the black source.
        EXPECT_GT(frame.pixelColor(x, y).red(), 200) << x << "," << y;
        EXPECT_EQ(frame.pixelColor(x, y).blue() < 60, red) << x << "," << y;
    }
}

// Outcomes real ffmpeg will not give on demand, from a stand-in that counts
// its calls.
TEST(ClipConversionRetry, OnlyAnAttemptedCopyIsRetriedAndOutputIsChecked)
{
    test::TempFolder folder;
    const QString tools = test::writeFakeTool(folder.path(), "ffmpeg", "echo >> \"$CALLS\"\n"
                                              "[ -n \"$FAIL\" ] && echo 'Unsupported CODEC' >&2 && exit 1\nexit 0");
    qputenv("CALLS", folder.file("calls").toUtf8());
    FFmpegService service(ToolLocator({tools, {}, {}}));
    service.pinSoftwareEncoders();
    const auto calls = [&] { return QFileInfo(folder.file("calls")).size(); };
    for (const auto& [trim, fail, expectedCalls, message] :
         {std::tuple{false, true, 2, "Unsupported CODEC"}, {true, true, 1, "Unsupported CODEC"},
          {false, false, 1, "Output file was not created."}}) {
        QFile::remove(folder.file("calls"));
        qputenv("FAIL", fail ? "1" : "");
        ClipConversion job{.input = "/in.mov", .output = folder.file("out.mp4"), .trim = trim, .hasAudio = true};
        EXPECT_EQ(test::failureOf(service.convertClip(job, {}, {})), FFmpegError::conversionFailed(message));
        EXPECT_EQ(calls(), expectedCalls) << "trim " << trim;
    }
    qunsetenv("FAIL");
    qunsetenv("CALLS");
}

}  // namespace
}  // namespace tavrelune
