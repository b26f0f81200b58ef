// Forecast arithmetic against sizes worked out by hand.
#include "controller/size_forecast.h"

#include <gtest/gtest.h>

using namespace tavrelune;

namespace {

ClipItem clip(int64_t width, int64_t height, std::optional<double> seconds, bool audio = true,
              std::optional<int64_t> audioBitrate = std::nullopt, double inPoint = 0)
{
    ClipItem item(QUrl::fromLocalFile("/in/c.mov"));
    item.width = width;
    item.height = height;
    item.duration = seconds;
    item.hasAudio = audio;
    item.audioBitrate = audioBitrate;
    item.inPoint = inPoint;
    return item;
}

}  // namespace

TEST(SizeForecast, EachOutputIsItsBitratesTimesItsLength)
{
    // HEVC "High" at 1920x1080: 13478 kb/s; H.264 "Small file" at the
    // 1280x720 floor: 2949 kb/s. One kb/s for one second is 125 bytes.
    const EncodeSettings hevcHigh;
    const struct {
        const char* what;
        QList<ClipItem> clips;
        EncodeSettings settings;
        QList<int64_t> outputs;
        int64_t parts;
    } cases[] = {
        {"copied audio at its probed rate", {clip(1920, 1080, 10, true, 128000)}, hevcHigh,
         {(13478 + 128) * 125 * 10}, 0},
        {"copied audio of unknown rate; no audio", {clip(1920, 1080, 10), clip(1920, 1080, 10, false)}, hevcHigh,
         {(13478 + 192) * 125 * 10, 13478 * 125 * 10}, 0},
        {"trimmed to 8 s: audio re-encoded", {clip(1920, 1080, 10, true, 128000, 2)}, hevcHigh,
         {(13478 + 192) * 125 * 8}, 0},
        {"audio removed, small frame, unknown length", {clip(320, 180, 10, true, 128000), clip(320, 180, {})},
         {.codec = VideoCodec::h264, .quality = QualityPreset::small, .removeAudio = true}, {2949 * 125 * 10, 0}, 0},
        // Parts take the first clip's size; the silent one gets silence.
        {"combined", {clip(1920, 1080, 10, true, 128000), clip(640, 360, 5, false)}, {.concatenateClips = true},
         {(13478 + 192) * 125 * 15}, (13478 + 1536) * 125 * 15},
    };
    for (const auto& c : cases) {
        const SizeForecast forecast = forecastBatch(c.clips, c.settings);
        EXPECT_EQ(forecast.outputs, c.outputs) << c.what;
        EXPECT_EQ(forecast.parts, c.parts) << c.what;
    }
}

TEST(SizeForecast, SummaryText)
{
    const std::pair<QList<int64_t>, const char*> cases[] = {
        {{}, ""},
        {{1}, "About 1 kB in 1 file"},
        {{999'600}, "About 1.0 MB in 1 file"},
        {{400'000'000, 420'400'000}, "About 820 MB in 2 files"},
        {{500'000'000, 500'000'000, 400'000'000}, "About 1.4 GB in 3 files"},
    };
    for (const auto& [outputs, text] : cases)
        EXPECT_EQ(forecastSummary({outputs, 0}), text) << text;
}
