// Real conversions and stills of tiny generated clips through the real ffmpeg.
#include "engine/silent_track.h"
#include "export_fixtures.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cmath>

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

    ClipConversion job(const test::ClipSpec& spec, VideoCodec codec = VideoCodec::h264)
    {
        return test::clipJob(file("in.mov"), file("out.mp4"), spec, codec);
    }

    QString convert(const ClipConversion& conversion)
    {
        converted = conversion.output;
        const auto failure = test::failureOf(
            service.convertClip(conversion, [this](double f) { progress.push_back(f); }, {}));
        return failure ? failure->description() : "";
    }

    QString probe(const QString& entry, const QString& stream = "v:0")
    {
        return test::probeEntry(converted, entry, stream);
    }

    test::TempFolder folder;
    FFmpegService service;
    std::vector<double> progress;
    QString converted;  // the last conversion's output

    // Where a frame of `path` shows the pure green of the test watermark.
    QRect greenArea(const QString& path, int width)
    {
        const QString still = file("still.png");
        if (test::failureOf(service.extractFrame(path, 0.1, still, width)))
            return {};
        const QImage frame(still);
        QRect green;
        for (int y = 0; y < frame.height(); ++y)
            for (int x = 0; x < frame.width(); ++x)
                if (const QColor c = frame.pixelColor(x, y); c.green() > 180 && c.red() < 90 && c.blue() < 90)
                    green |= QRect(x, y, 1, 1);
        return green;
    }
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

// A camera file with a dead first input: three PCM tracks, the first silent,
// the third 6 dB below the second.
const QStringList cameraTracks{"anullsrc=channel_layout=mono:sample_rate=48000",
                               "sine=frequency=440:sample_rate=48000",
                               "sine=frequency=880:sample_rate=48000,volume=0.5"};

TEST_F(ClipConversionTest, EveryAudioTrackKeepsItsChannelsAndLevel)
{
    ClipConversion camera = job({.seconds = 1.0, .audioCodec = "pcm_s16le", .audioTracks = cameraTracks});
    camera.audioTracks = waitForTask(service.probe(camera.input)).audioTracks;
    ASSERT_EQ(camera.audioTracks, (QList<AudioTrack>(3, {"pcm_s16le", 1})));
    EXPECT_EQ(convert(camera), "");
    ASSERT_EQ(test::audioStreamCount(camera.output), 3);
    for (const auto& [track, low, high] : {std::tuple{0, -INFINITY, -90.0}, {1, -19.0, -17.0}, {2, -25.0, -23.0}}) {
        const QString stream = QString("a:%1").arg(track);
        EXPECT_EQ(probe("codec_name", stream) + probe("channels", stream), "aac1") << track;
        const auto peak = parseTrackPeak(QString::fromUtf8(
            test::runTool("ffmpeg", trackPeakArguments(camera.output, track)).out));
        ASSERT_TRUE(peak) << track;
        EXPECT_TRUE(*peak >= low && *peak <= high) << track << ": " << *peak;
    }
    EXPECT_TRUE(waitForTask(service.firstAudioTrackSilent(camera.input, 3)));

    // A one-track clip as a part of a three-track batch: its sound, then silence.
    ClipConversion part = job({.seconds = 0.5});
    part.normalization = VideoNormalization{160, 90, 25, 3};
    part.output = file("part.mov");
    EXPECT_EQ(convert(part), "");
    ASSERT_EQ(test::audioStreamCount(part.output), 3);
    EXPECT_EQ(probe("channels", "a:0") + probe("channels", "a:2"), "22");
    EXPECT_NEAR(probe("duration", "format").toDouble(), 0.5, 0.05);
    EXPECT_FALSE(waitForTask(service.firstAudioTrackSilent(part.output, 3))) << "silence after sound is fine";
}

// Codecs MP4 players refuse are re-encoded, not copied under a wrong tag.
TEST_F(ClipConversionTest, VorbisAndOpusBecomeAac)
{
    for (const auto& [name, codec] : {std::pair{"in.mkv", "libvorbis"}, {"in.webm", "libopus"}}) {
        ClipConversion clip = test::clipJob(file(name), file("out.mp4"),
                                            {.seconds = 0.5,
                                             .videoCodec = name == QString("in.webm") ? "libvpx" : "libx264",
                                             .audioCodec = codec});
        clip.audioTracks = waitForTask(service.probe(clip.input)).audioTracks;
        EXPECT_EQ(convert(clip), "") << codec;
        EXPECT_EQ(probe("codec_name", "a:0"), "aac") << codec;
    }
}

// A trimmed silent clip as a part of a combined export: fitted to 320x240
// at 30 fps, with a silent track that ends with the video.
TEST_F(ClipConversionTest, TrimmedHevcPartIsNormalizedWithSilence)
{
    ClipConversion part = job({.seconds = 2.0, .audio = false}, VideoCodec::hevc);
    part.trim = true;
    part.startTime = 0.6;
    part.duration = 0.8;
    part.normalization = VideoNormalization{320, 240, 30, true};
    part.output = file("part.mov");
    EXPECT_EQ(convert(part), "");
    EXPECT_EQ(probe("codec_tag_string") + probe("width") + "x" + probe("height") + "@" + probe("r_frame_rate"),
              "hvc1320x240@30/1");
    EXPECT_NEAR(probe("duration").toDouble(), 0.8, 0.001);
    EXPECT_NEAR(probe("duration", "a:0").toDouble(), 0.8, 0.001);
    EXPECT_EQ(probe("sample_rate", "a:0"), "48000");
}

// A camcorder's fields (1080i-style, top field first) become whole frames:
// no combing is left for idet to find, and the file is flagged progressive.
TEST_F(ClipConversionTest, InterlacedSourcesAreDeinterlaced)
{
    ClipConversion fields = job({.width = 320, .height = 240, .rate = "50", .seconds = 1, .audio = false,
                                 .filter = "tinterlace=interleave_top,setfield=tff",
                                 .videoOptions = {"-flags", "+ilme+ildct", "-top", "1"}});
    const MediaInfo probed = waitForTask(service.probe(fields.input));
    ASSERT_TRUE(probed.interlaced);
    fields.deinterlace = probed.interlaced;
    EXPECT_EQ(convert(fields), "");
    EXPECT_EQ(probe("field_order"), "progressive");
    const QString report = QString::fromUtf8(
        test::runTool("ffmpeg", {"-v", "info", "-i", fields.output, "-vf", "idet", "-f", "null", "-"}).err);
    const auto count = [&report](const char* kind) {
        const QRegularExpression pattern(QString("Multi frame detection:.*%1:\\s*(\\d+)").arg(kind));
        return pattern.match(report).captured(1).toInt();
    };
    EXPECT_GT(count("Progressive"), 3 * (count("TFF") + count("BFF"))) << report.toStdString();
}

// A phone's variable rate (frames picked irregularly from a 120 fps time
// base) becomes the constant standard rate nearest its average, not 120.
TEST_F(ClipConversionTest, VariableFrameRateBecomesTheNearestStandardRate)
{
    ClipConversion phone = job({.width = 160, .height = 120, .rate = "120", .seconds = 2, .audio = false,
                                .filter = "select='not(mod(n\\,5))+not(mod(n\\,7))'",
                                .videoOptions = {"-fps_mode", "vfr"}});
    const MediaInfo probed = waitForTask(service.probe(phone.input));
    ASSERT_TRUE(probed.variableFrameRate);
    EXPECT_EQ(probed.fps, 30);  // 11 of every 35 frames: 37.7 fps on average
    phone.fps = probed.fps;
    phone.constantRate = true;
    EXPECT_EQ(convert(phone), "");
    EXPECT_EQ(probe("r_frame_rate"), probe("avg_frame_rate"));
    const double frames = test::runTool("ffprobe", {"-v", "error", "-count_frames", "-show_entries",
                                                    "stream=nb_read_frames", "-of", "csv=p=0", phone.output})
                              .out.trimmed().toDouble();
    EXPECT_NEAR(frames, 60, 1);
}

// HDV-style pixels, 4:3 wide: the file has square pixels at the shown size,
// and a square watermark placed on the shown picture stays square.
TEST_F(ClipConversionTest, NonSquarePixelsBecomeSquareAtTheShownSize)
{
    ClipConversion hdv = job({.width = 360, .height = 270, .seconds = 0.2, .audio = false, .pattern = "color",
                              .filter = "setsar=4/3"});
    const MediaInfo probed = waitForTask(service.probe(hdv.input));
    ASSERT_EQ(probed.width, 480);
    hdv.width = probed.width;
    hdv.squarePixels = std::abs(probed.pixelAspect - 1) > 0.001;
    QImage mark(40, 40, QImage::Format_ARGB32);
    mark.fill(Qt::green);
    ASSERT_TRUE(mark.save(file("mark.png")));
    hdv.watermark = WatermarkOverlay{file("mark.png"), 0.1, 0.1, 0.25, 1.0, 1.0};
    EXPECT_EQ(convert(hdv), "");
    EXPECT_EQ(probe("width") + "x" + probe("height") + " " + probe("sample_aspect_ratio"), "480x270 1:1");

    const QRect green = greenArea(hdv.output, 480);
    EXPECT_NEAR(double(green.width()) / green.height(), 1.0, 0.05) << green.width() << "x" << green.height();

    // A portrait part of a landscape batch: the mark sits on its picture
    // (102x180 at x = 109 between the bars), sized from that picture.
    ClipConversion portrait = job({.width = 90, .height = 160, .seconds = 0.2, .audio = false, .pattern = "color"});
    portrait.normalization = VideoNormalization{320, 180, 25, 0};
    portrait.watermark = WatermarkOverlay{file("mark.png"), 0.75, 0.5, 0.2, 1.0, 1.0};
    EXPECT_EQ(convert(portrait), "");
    EXPECT_EQ(greenArea(portrait.output, 320), QRect(186, 90, 20, 20));
}

// A trim starts on the frame the In & Out window showed: frame 140 at
// 30 fps starts at 4.6667 s, which three decimals round past.
TEST_F(ClipConversionTest, TrimStartsOnTheFrameShownAndKeepsWholeFrames)
{
    ClipConversion trimmed = job({.width = 160, .height = 120, .rate = "30", .seconds = 6, .audio = false,
                                  .videoOptions = {"-qp", "0", "-g", "30"}});
    trimmed.trim = true;
    trimmed.fps = 30;
    trimmed.startTime = 4.6666667;
    trimmed.duration = 1;
    EXPECT_EQ(convert(trimmed), "");
    EXPECT_EQ(test::runTool("ffprobe", {"-v", "error", "-count_frames", "-show_entries", "stream=nb_read_frames",
                                        "-of", "csv=p=0", trimmed.output})
                  .out.trimmed(),
              "30");
    const auto frame = [](const QString& path, int n) {
        return test::runTool("ffmpeg", {"-v", "error", "-i", path, "-vf",
                                        QString("select=eq(n\\,%1),scale=16:12,format=gray").arg(n), "-frames:v",
                                        "1", "-f", "rawvideo", "-"})
            .out;
    };
    const auto distance = [](const QByteArray& a, const QByteArray& b) {
        int sum = 0;
        for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i)
            sum += std::abs(int(std::uint8_t(a[i])) - int(std::uint8_t(b[i])));
        return sum;
    };
    const QByteArray first = frame(trimmed.output, 0);
    ASSERT_FALSE(first.isEmpty());
    const int shown = distance(first, frame(trimmed.input, 140));
    EXPECT_LT(shown, distance(first, frame(trimmed.input, 139)));
    EXPECT_LT(shown, distance(first, frame(trimmed.input, 141)));
}

// A black clip through an inverting LUT turns white; the red watermark on
// top is not graded and covers 80x40 pixels from (160, 90). The still comes
// back at the requested width with an even height.
TEST_F(ClipConversionTest, LutAndWatermarkFromAwkwardPathsSeenInAStill)
{
    ClipConversion graded = job({.width = 320, .height = 180, .seconds = 0.5, .audio = false, .pattern = "color"});
    // Colons, quotes and backslashes never reach staged LUT paths (see
    // FFmpegService::escapeFilterPath).
    graded.lutPath = folder.write("looks, [v2]; été/invert.cube",
                                  "LUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 0\n1 0 0\n0 0 0\n");
    QImage mark(40, 20, QImage::Format_ARGB32);
    mark.fill(Qt::red);
    ASSERT_TRUE(mark.save(file("mark.png")));
    graded.watermark = WatermarkOverlay{file("mark.png"), 0.5, 0.5, 0.25, 1.0, 2.0};
    graded.settings.matchPreview = false;  // the LUT itself reaches ffmpeg
    EXPECT_EQ(convert(graded), "");

    const QString still = file("still é.png");
    ASSERT_EQ(test::failureOf(service.extractFrame(graded.output, 0.2, still, 320)), std::nullopt);
    const QImage frame(still);
    for (const auto& [x, y, red] : {std::tuple{165, 95, true}, {235, 125, true}, {150, 110, false},
                                    {250, 140, false}}) {
        // Red or white, never the black source.
        EXPECT_GT(frame.pixelColor(x, y).red(), 200) << x << "," << y;
        EXPECT_EQ(frame.pixelColor(x, y).blue() < 60, red) << x << "," << y;
    }
    ASSERT_EQ(test::failureOf(service.extractFrame(graded.output, 0.2, still, 101)), std::nullopt);
    EXPECT_EQ(QImage(still).size(), QSize(101, 56));

    // An older still would pass the existence check after a failed run.
    EXPECT_EQ(test::failureOf(service.extractFrame(file("gone.mp4"), 0, still, 160)).value().kind(),
              FFmpegError::Kind::conversionFailed);
    EXPECT_FALSE(QFileInfo::exists(still));
}

// ffmpeg answers SIGTERM by finishing up and exiting with status 255 rather
// than dying of the signal; either way of stopping must still read as a
// cancellation.
TEST_F(ClipConversionTest, StopTokenAndCancelEndTheChildAndDeleteNothing)
{
    // Long enough that x265 is still busy at its first progress report.
    ClipConversion long_ = job({.width = 320, .height = 180, .seconds = 20}, VideoCodec::hevc);
    service.pinSoftwareEncoders();
    for (const bool throughToken : {true, false}) {
        std::stop_source stop;
        bool asked = false;
        const auto stopAtFirstProgress = [&](double) {
            if (!std::exchange(asked, true))
                throughToken ? (void)stop.request_stop() : service.cancel();
        };
        EXPECT_EQ(test::failureOf(service.convertClip(long_, stopAtFirstProgress, stop.get_token())),
                  FFmpegError::cancelled());
        EXPECT_TRUE(asked);
        EXPECT_EQ(test::ffmpegChildren(), "");
        EXPECT_TRUE(QFileInfo::exists(long_.input));
        EXPECT_TRUE(QFileInfo::exists(long_.output)) << "a partial output is left alone";
    }

    // Preview stills are not the tracked conversion: cancel() leaves them be.
    auto still = service.extractFrame(long_.input, 15, file("still.png"), 160);
    service.cancel();
    EXPECT_EQ(test::failureOf(std::move(still)), std::nullopt);
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
    for (const auto& [trim, fail, expectedCalls, message] :
         {std::tuple{false, true, 2, "Unsupported CODEC"}, {true, true, 1, "Unsupported CODEC"},
          {false, false, 1, "Output file was not created."}}) {
        QFile::remove(folder.file("calls"));
        qputenv("FAIL", fail ? "1" : "");
        ClipConversion job{.input = "/in.mov", .output = folder.file("out.mp4"), .trim = trim, .hasAudio = true};
        EXPECT_EQ(test::failureOf(service.convertClip(job, {}, {})), FFmpegError::conversionFailed(message));
        EXPECT_EQ(QFileInfo(folder.file("calls")).size(), expectedCalls) << "trim " << trim;
    }
    qunsetenv("FAIL");
    qunsetenv("CALLS");
}

}  // namespace
}  // namespace tavrelune
