#include "engine/output_check.h"

#include <gtest/gtest.h>

using namespace tavrelune;

namespace {

const ExpectedOutput twelveSeconds{VideoCodec::hevc, 640, 360, 12.0, 25, 1};

MediaInfo probedFile(double duration)
{
    MediaInfo info;
    info.duration = duration;
    info.width = 640;
    info.height = 360;
    info.codecName = "hevc";
    info.fps = 25;
    info.hasAudio = true;
    return info;
}

}  // namespace

TEST(OutputCheck, EachWayAFileFallsShortIsNamed)
{
    struct Case {
        const char* name;
        ExpectedOutput expected;
        MediaInfo probed;
        std::optional<QString> message;
    };
    MediaInfo noVideo = probedFile(12);
    noVideo.width = noVideo.height = 0;
    noVideo.codecName = "unknown";
    MediaInfo h264 = probedFile(12);
    h264.codecName = "h264";
    MediaInfo oddSize = probedFile(12);
    oddSize.width = 641;
    MediaInfo silent = probedFile(12);
    silent.hasAudio = false;
    ExpectedOutput noAudioWanted = twelveSeconds;
    noAudioWanted.audioTracks = 0;
    ExpectedOutput threeTracks = twelveSeconds;
    threeTracks.audioTracks = 3;
    MediaInfo twoTracks = probedFile(12);
    twoTracks.audioTracks = {{"aac", 2}, {"aac", 1}};
    ExpectedOutput sizeUnknown = twelveSeconds;
    sizeUnknown.width = sizeUnknown.height = 0;
    ExpectedOutput lengthUnknown = twelveSeconds;
    lengthUnknown.duration = 0;

    const Case cases[] = {
        {"matching", twelveSeconds, probedFile(12), std::nullopt},
        {"too short", twelveSeconds, probedFile(3.4), "Output check failed: expected 12.0 s, the file holds 3.4 s."},
        {"no length", twelveSeconds, probedFile(0), "Output check failed: expected 12.0 s, the file holds 0.0 s."},
        {"just too long", twelveSeconds, probedFile(12.15), "Output check failed: expected 12.0 s, the file holds 12.2 s."},
        {"a frame and 0.1 s long", twelveSeconds, probedFile(12.139), std::nullopt},
        {"a frame and 0.1 s short", twelveSeconds, probedFile(11.861), std::nullopt},
        {"length unknown", lengthUnknown, probedFile(3.4), std::nullopt},
        {"no video", twelveSeconds, noVideo, "Output check failed: expected HEVC video, the file holds no video."},
        {"other codec", twelveSeconds, h264, "Output check failed: expected HEVC video, the file holds h264 video."},
        {"other size", twelveSeconds, oddSize,
         "Output check failed: expected 640" + QString(QChar(0x00D7)) + "360 pixels, the file holds 641"
             + QString(QChar(0x00D7)) + "360 pixels."},
        {"size unknown", sizeUnknown, oddSize, std::nullopt},
        {"audio missing", twelveSeconds, silent, "Output check failed: expected an audio track, the file holds none."},
        {"audio unwanted", noAudioWanted, probedFile(12),
         "Output check failed: expected no audio, the file holds an audio track."},
        {"a track lost", threeTracks, twoTracks,
         "Output check failed: expected 3 audio tracks, the file holds 2 audio tracks."},
    };
    for (const Case& each : cases)
        EXPECT_EQ(outputMismatch(each.expected, each.probed).value_or("none").toStdString(),
                  each.message.value_or("none").toStdString())
            << each.name;
}
