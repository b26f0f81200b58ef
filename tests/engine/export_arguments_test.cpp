#include "engine/clip_conversion.h"
#include "engine/concat_job.h"
#include "engine/frame_extraction.h"
#include "export_fixtures.h"

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

const QString head = "-nostdin -hide_banner -loglevel error -y ";
const QString tail = " -movflags +faststart -progress pipe:1 -nostats /out/c.mp4";
const QString aac = "-c:a aac -ar 48000 -ac 2 -b:a 192k";

TEST(ConversionArguments, FullListsOfTheTypicalJobs)
{
    const QString plain = "-vf format=gbrp16le,scale=trunc(iw/2)*2:trunc(ih/2)*2,format=yuv420p -map 0:v:0 ";
    EXPECT_EQ(argumentsOf(fullHdClip(VideoCodec::h264)), head + "-i /in/c.mov " + plain
              + encoding(VideoCodec::h264, "18662k") + " -sn -map 0:a:0? -c:a copy" + tail);
    EXPECT_TRUE(argumentsOf(fullHdClip(VideoCodec::hevc))
                    .contains(encoding(VideoCodec::hevc, "13478k") + " -tag:v hvc1 -sn -map 0:a:0? -c:a copy"));

    ClipConversion trimmed = fullHdClip(VideoCodec::h264);
    trimmed.trim = true;
    trimmed.startTime = 0.0005;
    trimmed.duration = 3.5;
    EXPECT_TRUE(argumentsOf(trimmed).endsWith("-sn -t 3.500 -map 0:a:0? " + aac + tail));
    EXPECT_FALSE(argumentsOf(trimmed).contains("-ss"));
    trimmed.startTime = 12.25;
    EXPECT_TRUE(argumentsOf(trimmed).startsWith(head + "-ss 12.250 -i /in/c.mov -vf"));

    // A silent clip in a combined export, watermarked: bitrate from the
    // normalized size, silence is input 2.
    ClipConversion part = fullHdClip(VideoCodec::h264);
    part.hasAudio = false;
    part.normalization = VideoNormalization{1280, 720, 25, true};
    part.watermark = WatermarkOverlay{"/w/m.png", 0.75, 0.05, 0.2, 1, 2};
    EXPECT_EQ(argumentsOf(part), head + "-i /in/c.mov -i /w/m.png -f lavfi -i anullsrc=channel_layout=stereo:"
              "sample_rate=48000 -filter_complex [0:v]format=gbrp16le,scale=1280:720:force_original_aspect_"
              "ratio=decrease,pad=1280:720:(ow-iw)/2:(oh-ih)/2,setsar=1,fps=25.000,format=gbrp16le[v];[1:v]"
              "format=rgba,scale=256:-1:flags=lanczos[wm];[v][wm]overlay=960:36:format=auto,format=yuv420p"
              "[vout] -map [vout] " + encoding(VideoCodec::h264, "8294k") + " -sn -map 2:a:0 " + aac
              + " -shortest" + tail);
    part.watermark.reset();
    EXPECT_TRUE(argumentsOf(part).contains("-sn -map 1:a:0 -c:a aac"));
}

TEST(ConversionArguments, AudioGroup)
{
    struct Case { bool removeAudio, hasAudio, copyAudio, combined; QString audio; };
    for (const Case& c : {Case{true, false, true, true, "-an"}, Case{false, false, true, false, "-an"},
                          Case{false, true, false, false, "-map 0:a:0? " + aac},
                          Case{false, true, true, true, "-map 0:a:0? " + aac}}) {
        ClipConversion job = fullHdClip(VideoCodec::h264);
        job.settings.removeAudio = c.removeAudio;
        job.settings.copyAudio = c.copyAudio;
        job.hasAudio = c.hasAudio;
        if (c.combined)
            job.normalization = VideoNormalization{1920, 1080, 25, true};
        EXPECT_TRUE(argumentsOf(job).endsWith("-sn " + c.audio + tail)) << argumentsOf(job).toStdString();
        EXPECT_FALSE(argumentsOf(job).contains("lavfi"));
    }
}

TEST(ConversionArguments, ProgressAndAudioCopyFailure)
{
    EXPECT_EQ(progressFraction(u"out_time_ms=5000000", 10), 0.5);
    EXPECT_EQ(progressFraction(u"out_time_ms=15000000", 10), 1.0);
    EXPECT_EQ(progressFraction(u"out_time_ms=-40000", 10), 0.0);
    EXPECT_EQ(progressFraction(u"out_time_ms=5000000", 0), std::nullopt);
    EXPECT_EQ(progressFraction(u"out_time_ms=N/A", 10), std::nullopt);
    EXPECT_EQ(progressFraction(u"out_time_us=5000000", 10), std::nullopt);
    EXPECT_TRUE(isAudioCopyFailure("Could not find tag for CODEC pcm_s16le"));
    EXPECT_TRUE(isAudioCopyFailure("Incompatible sample format"));
    EXPECT_FALSE(isAudioCopyFailure("Cancelled"));
}

TEST(ConcatAndFrameArguments, ListTextAndSeekTimes)
{
    EXPECT_EQ(concatListText({"/tmp/a/001.mp4", "/tmp/it's.mp4"}),
              "file '/tmp/a/001.mp4'\nfile '/tmp/it'\\''s.mp4'\n");
    EXPECT_EQ(concatListPath("/out/all.mp4"), "/out/tavrelune-concat.txt");
    EXPECT_EQ(frameExtractionArguments("/c.mkv", 12.3456, "/s.png", 1280).join(' '),
              head + "-ss 12.346 -i /c.mkv -frames:v 1 -vf scale=1280:-2:flags=bicubic,format=rgb24 "
                     "-pix_fmt rgb24 -update 1 /s.png");
    EXPECT_EQ(frameExtractionArguments("/c.mkv", -1, "/s.png", 640).at(6), "0.000");
    EXPECT_EQ(frameExtractionArguments("/c.mkv", std::nan(""), "/s.png", 640).at(6), "0.000");
}

}  // namespace
}  // namespace tavrelune
