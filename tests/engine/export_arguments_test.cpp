// The argument lists and filter-graph texts handed to ffmpeg.
#include "engine/clip_conversion.h"
#include "engine/concat_job.h"
#include "engine/decimal_text.h"
#include "engine/frame_extraction.h"
#include "export_fixtures.h"

#include <QProcess>
#include <clocale>
#include <cstdio>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

ClipConversion fullHdClip(VideoCodec codec)
{
    ClipConversion job{.input = "/in/c.mov", .output = "/out/c.mp4", .duration = 10, .width = 1920,
                       .height = 1080, .hasAudio = true};
    job.settings.codec = codec;
    return job;
}

QString argumentsOf(const ClipConversion& job)
{
    return conversionArguments(job, softwareEncoder(job.settings.codec)).join(' ');
}

QString encoding(VideoCodec codec, const QString& bitrate)
{
    return "-c:v " + softwareEncoder(codec).name + " -b:v " + bitrate + " "
         + softwareEncoder(codec).options.join(' ') + " -pix_fmt yuv420p";
}

QString graph(double exposure, double contrast, double temperature, double saturation, double tint = 0)
{
    return FFmpegService::filterGraph(std::nullopt, {exposure, contrast, saturation, temperature, tint},
                                      std::nullopt, "yuv420p");
}

const QString head = "-nostdin -hide_banner -loglevel error -y ";
const QString tail = " -movflags +faststart -progress pipe:1 -nostats /out/c.mp4";
const QString pcm = "-c:a pcm_s16le -ar 48000 -ac 2 -af apad";

TEST(ConversionArguments, TrimsStartOnTheFrameShownAtTheInPointAndEndBeforeTheOutPoint)
{
    const double ntsc = 30000.0 / 1001;
    struct Case {
        double inPoint, length, fps;
        FrameSpan expected;
    };
    for (const Case& c : {
             // Frame 140 at 30 fps starts at 4.6667: "4.667" would skip it.
             Case{140 / 30.0, 1.0, 30, {140 / 30.0 - 0.001, 30 / 30.0}},
             Case{4.6666667, 1.0, 30, {140 / 30.0 - 0.001, 30 / 30.0}},
             Case{140 / ntsc, 1.0, ntsc, {140 / ntsc - 0.001, 30 / ntsc}},
             Case{4.672, 0.4, ntsc, {140 / ntsc - 0.001, 13 / ntsc}},  // inside frame 140
             Case{0, 0.52, 25, {0, 13 / 25.0}},                  // out point inside frame 12
             Case{0.52, 2.48, 25, {13 / 25.0 - 0.001, 62 / 25.0}},
             Case{12.25, 3.5, 0, {12.25, 3.5}},                  // rate unknown
         }) {
        const FrameSpan span = frameSpan(c.inPoint, c.length, c.fps);
        EXPECT_NEAR(span.seek, c.expected.seek, 1e-9) << c.inPoint << " at " << c.fps;
        EXPECT_NEAR(span.length, c.expected.length, 1e-9) << c.inPoint << " at " << c.fps;
    }
}

TEST(ConversionArguments, FullListsOfTheTypicalJobs)
{
    const QString plain = "-vf scale=in_color_matrix=bt709:in_range=tv,format=gbrp16le,crop=trunc(iw/2)*2:"
                          "trunc(ih/2)*2:0:0,format=gbrp16le,scale=out_color_matrix=bt709:out_range=tv,format=yuv420p "
                          "-map 0:v:0 ";
    const QString tags = " -colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv";
    EXPECT_EQ(argumentsOf(fullHdClip(VideoCodec::h264)), head + "-i /in/c.mov " + plain
              + encoding(VideoCodec::h264, "18662k") + tags + " -sn -map 0:a:0? -c:a:0 copy" + tail);
    EXPECT_TRUE(argumentsOf(fullHdClip(VideoCodec::hevc))
                    .contains(encoding(VideoCodec::hevc, "13478k") + " -tag:v hvc1" + tags + " -sn -map 0:a:0? -c:a:0 copy"));

    // Trimmed audio is re-encoded; a start within a millisecond needs no seek.
    ClipConversion trimmed = fullHdClip(VideoCodec::h264);
    trimmed.trim = true;
    trimmed.startTime = 0.0005;
    trimmed.duration = 3.5;
    EXPECT_TRUE(argumentsOf(trimmed).endsWith("-sn -t 3.500000 -map 0:a:0? -c:a:0 aac -ar:a:0 48000 -ac:a:0 2 "
                                              "-b:a:0 192k" + tail));
    EXPECT_FALSE(argumentsOf(trimmed).contains("-ss"));
    trimmed.startTime = 12.25;
    EXPECT_TRUE(argumentsOf(trimmed).startsWith(head + "-ss 12.250000 -i /in/c.mov -vf"));

    // A silent clip in a combined export, watermarked: bitrate from the
    // normalized size, silence is input 2.
    ClipConversion part = fullHdClip(VideoCodec::h264);
    part.hasAudio = false;
    part.normalization = VideoNormalization{1280, 720, 25, true};
    part.watermark = WatermarkOverlay{"/w/m.png", 0.75, 0.05, 0.2, 1, 2};
    EXPECT_EQ(argumentsOf(part), head + "-i /in/c.mov -i /w/m.png -f lavfi -i anullsrc=channel_layout=stereo:"
              "sample_rate=48000 -filter_complex [0:v]scale=in_color_matrix=bt709:in_range=tv,format=gbrp16le,"
              "scale=1280:720,pad=1280:720:0:0,setsar=1,"
              "fps=25.000,format=gbrp16le[v];[1:v]format=rgba,scale=256:-1:flags=lanczos[wm];[v][wm]overlay=960:36:"
              "format=auto,scale=out_color_matrix=bt709:out_range=tv,format=yuv420p[vout] -map [vout] "
              + encoding(VideoCodec::h264, "8294k") + tags + " -sn -t 10.000000 -map 2:a:0 " + pcm + tail);
    part.watermark.reset();
    EXPECT_TRUE(argumentsOf(part).contains("-sn -t 10.000000 -map 1:a:0 -c:a pcm_s16le"));
    // Removal wins over the silent track; a combined part never copies audio.
    part.settings.removeAudio = true;
    EXPECT_TRUE(argumentsOf(part).endsWith("-sn -t 10.000000 -an" + tail));
    part.settings.removeAudio = false;
    part.hasAudio = true;
    EXPECT_TRUE(argumentsOf(part).endsWith("-sn -t 10.000000 -map 0:a:0? " + pcm + tail));
}

// Per track: copied when MP4 takes the codec and the clip is whole, else
// AAC keeping mono as mono; a part gets the batch's layout of stereo tracks.
TEST(ConversionArguments, EveryAudioTrackIsKept)
{
    const auto audioOf = [](const ClipConversion& job) {
        const QString all = argumentsOf(job);
        return all.mid(all.indexOf(" -sn ") + 5).chopped(tail.size());
    };
    ClipConversion camera = fullHdClip(VideoCodec::h264);
    camera.audioTracks = {{"pcm_s24le", 1}, {"ac3", 6}, {"vorbis", 2}, {"opus", 6}, {"flac", 1}};
    const QString maps = "-map 0:a:0? -map 0:a:1? -map 0:a:2? -map 0:a:3? -map 0:a:4? ";
    EXPECT_EQ(audioOf(camera), maps + "-c:a:0 aac -ar:a:0 48000 -ac:a:0 1 -b:a:0 192k -c:a:1 copy "
              "-c:a:2 aac -ar:a:2 48000 -ac:a:2 2 -b:a:2 192k -c:a:3 aac -ar:a:3 48000 -ac:a:3 2 -b:a:3 192k "
              "-c:a:4 aac -ar:a:4 48000 -ac:a:4 1 -b:a:4 192k");
    EXPECT_TRUE(camera.triesAudioCopy());
    camera.audioTracks = {{"vorbis", 2}};
    EXPECT_FALSE(camera.triesAudioCopy()) << "nothing to retry";

    ClipConversion part = fullHdClip(VideoCodec::h264);
    part.normalization = VideoNormalization{1280, 720, 25, 3};
    EXPECT_EQ(audioOf(part), "-t 10.000000 -map 0:a:0? -map 1:a:0 -map 1:a:0 " + pcm);
    part.duration = 0;  // unknown length: the silence ends with the picture
    EXPECT_TRUE(audioOf(part).endsWith("-ac 2 -shortest"));
    part.duration = 10;
    part.audioTracks = {{"aac", 2}, {"aac", 2}, {"pcm_s16le", 1}};
    EXPECT_EQ(audioOf(part), "-t 10.000000 -map 0:a:0? -map 0:a:1? -map 0:a:2? " + pcm);
    EXPECT_FALSE(part.needsSilence());
    EXPECT_FALSE(argumentsOf(part).contains("anullsrc"));
}

TEST(ConversionArguments, ProgressConcatListAndStillSeek)
{
    EXPECT_EQ(progressFraction(u"out_time_ms=5000000", 10), 0.5);
    EXPECT_EQ(progressFraction(u"out_time_ms=15000000", 10), 1.0);
    EXPECT_EQ(progressFraction(u"out_time_ms=-40000", 10), 0.0) << "ffmpeg starts slightly below zero";
    EXPECT_EQ(progressFraction(u"out_time_ms=5000000", 0), std::nullopt);
    EXPECT_FALSE(isAudioCopyFailure("Cancelled"));
    EXPECT_EQ(concatListText({{"/tmp/a\nb/001.mov", 0.52}, {"/tmp/it's.mov", 0}}, "/tmp/a\nb"),
              "file '001.mov'\noutpoint 0.520000\nfile '/tmp/it'\\''s.mov'\n");
    for (const double at : {-1.0, std::nan("")})
        EXPECT_EQ(frameExtractionArguments("/c.mkv", at, "/s.png", 640).at(6), "0.000");
}

TEST(FilterGraph, AdjustmentsAppearOnlyPastTheirThresholds)
{
    const QString in = "format=gbrp16le,", out = ",crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0,format=yuv420p";
    EXPECT_EQ(graph(0.0005, 1.0005, 0.5, 0.9995, -0.5), in.chopped(1) + out) << "at the thresholds";
    EXPECT_EQ(graph(0.5, 1.1, 50, 1.2), in + "exposure=exposure=0.5000,colorbalance=rs=0.2000:rm=0.2000:"
              "rh=0.2000:bs=-0.2000:bm=-0.2000:bh=-0.2000,eq=contrast=1.1000:saturation=1.2000" + out);
    EXPECT_EQ(graph(-0.0011, 1, 0, 1), in + "exposure=exposure=-0.0011" + out);
    EXPECT_EQ(graph(0, 1, 0, 1, 25), in + "colorbalance=gs=-0.1000:gm=-0.1000:gh=-0.1000" + out);
    EXPECT_EQ(graph(0, 1, 50, 1, -50), in + "colorbalance=rs=0.2000:rm=0.2000:rh=0.2000:bs=-0.2000:bm=-0.2000:"
              "bh=-0.2000:gs=0.2000:gm=0.2000:gh=0.2000" + out);
    // Temperature and saturation are held to what their filters take.
    EXPECT_EQ(graph(0, 1, -600, 5), in + "colorbalance=rs=-1.0000:rm=-1.0000:rh=-1.0000:bs=1.0000:bm=1.0000:"
              "bh=1.0000,eq=saturation=3.0000" + out);
}

TEST(FilterGraph, LutNormalizationAndEscaping)
{
    EXPECT_EQ(FFmpegService::filterGraph(QString(""), {}, std::nullopt, "yuv420p"), graph(0, 1, 0, 1));
    EXPECT_EQ(FFmpegService::filterGraph(R"(C:\l,u't[1];é.cube)", {},
                                         VideoNormalization{1280, 720, 29.97002997, true}, "gbrp16le"),
              R"(format=gbrp16le,lut3d=file=C\:\\l\,u\'t\[1\]\;é.cube:interp=tetrahedral,)"
              "scale=1280:720:force_original_aspect_ratio=decrease,pad=1280:720:(ow-iw)/2:(oh-ih)/2,"
              "setsar=1,fps=29.970,format=gbrp16le");
}

TEST(WatermarkFilterComplex, PlacesTheClampedWatermarkInsideTheFrame)
{
    EXPECT_EQ(FFmpegService::watermarkFilterComplex("G", {"/m.png", 0.75, 0.05, 0.2, 0.8, 2}, 1920, 1080),
              "[0:v]G[v];[1:v]format=rgba,colorchannelmixer=aa=0.8000,scale=384:-1:flags=lanczos"
              "[wm];[v][wm]overlay=1440:54:format=auto,format=yuv420p[vout]");
    // Nearly opaque is drawn opaque; a corner position is pulled back in.
    EXPECT_TRUE(FFmpegService::watermarkFilterComplex("G", {"/m.png", 1, 1, 0.25, 0.999, 1}, 1920, 1080)
                    .endsWith("[1:v]format=rgba,scale=480:-1:flags=lanczos[wm];[v][wm]overlay=1440:600:"
                              "format=auto,format=yuv420p[vout]"));
}

// Qt applications hand the user's locale to the C library, where a German
// one makes printf write "0,5000".
TEST(DecimalText, IgnoresTheProcessLocale)
{
    test::TempFolder folder;
    if (QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", folder.file("de_DE.UTF-8")}) != 0)
        GTEST_SKIP() << "localedef cannot build de_DE";
    setenv("LOCPATH", folder.path().toLocal8Bit().constData(), 1);
    ASSERT_TRUE(setlocale(LC_NUMERIC, "de_DE.UTF-8"));
    const QString text = graph(0.5, 1, 0, 1) + fixedDecimal(12.3456, 3);
    char printed[8];
    std::snprintf(printed, sizeof printed, "%.1f", 0.5);
    setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
    ASSERT_STREQ(printed, "0,5") << "the locale did not take effect";
    EXPECT_TRUE(text.contains("exposure=0.5000,") && text.endsWith("12.346")) << text.toStdString();
}

}  // namespace
}  // namespace tavrelune
