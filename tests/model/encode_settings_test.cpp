#include "model/encode_settings.h"

#include <gtest/gtest.h>
#include <limits>

using namespace tavrelune;

TEST(QualityPresetBitrate, FactorsPerMegapixelWithTheSmallFrameFloor)
{
    struct Case {
        QualityPreset preset;
        VideoCodec codec;
        int64_t width, height, expected;
    };
    const Case cases[] = {
        {QualityPreset::high, VideoCodec::h264, 1920, 1080, 18662},
        {QualityPreset::high, VideoCodec::hevc, 1920, 1080, 13478},
        {QualityPreset::balanced, VideoCodec::h264, 1920, 1080, 11405},
        {QualityPreset::balanced, VideoCodec::hevc, 1920, 1080, 7880},
        {QualityPreset::small, VideoCodec::h264, 1920, 1080, 6636},
        {QualityPreset::small, VideoCodec::hevc, 1920, 1080, 4562},
        {QualityPreset::high, VideoCodec::h264, 3840, 2160, 74650},
        {QualityPreset::high, VideoCodec::h264, 640, 360, 8294},
        {QualityPreset::small, VideoCodec::hevc, 0, -5, 2028},
        // Each side is raised on its own: portrait 1080x1920 counts as 1280x1920.
        {QualityPreset::high, VideoCodec::h264, 1080, 1920, 22118},
    };
    for (const Case& c : cases)
        EXPECT_EQ(bitrateKbps(c.preset, c.width, c.height, c.codec), c.expected)
            << rawValue(c.preset).toStdString() << " " << rawValue(c.codec).toStdString() << " "
            << c.width << "x" << c.height;
}

TEST(QualityPresetBitrate, GrowsWithTheFrameRateAbove30)
{
    const auto at = [](double fps) { return bitrateKbps(QualityPreset::high, 1920, 1080, VideoCodec::h264, fps); };
    EXPECT_EQ(at(0), 18662);  // unknown
    EXPECT_EQ(at(29.97), 18662);
    EXPECT_EQ(at(60), 31386);   // 2^0.75
    EXPECT_EQ(at(240), 88774);  // 8^0.75
    EXPECT_EQ(at(1000), at(240));
}

TEST(QualityPresetBitrate, HugeFramesSaturateInsteadOfOverflowing)
{
    const int64_t max = std::numeric_limits<int64_t>::max();
    EXPECT_EQ(bitrateKbps(QualityPreset::high, max, max, VideoCodec::h264), max);
    EXPECT_GT(bitrateKbps(QualityPreset::small, 4'000'000'000, 4'000'000'000, VideoCodec::hevc), 0);
}
