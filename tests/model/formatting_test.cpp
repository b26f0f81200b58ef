#include "model/clip_item.h"
#include "model/media_type.h"
#include "model/time_formatting.h"

#include <gtest/gtest.h>
#include <limits>

using namespace tavrelune;

TEST(TimeFormattingClock, RoundsOnceThenSplits)
{
    struct Case {
        double seconds;
        bool tenths;
        const char* expected;
    };
    const Case cases[] = {
        {0, false, "0:00"},          {65.4, false, "1:05"},        {65.5, false, "1:06"},
        {59.6, false, "1:00"},       {3725, false, "1:02:05"},     {36000, false, "10:00:00"},
        {3599.4, false, "59:59"},    {3599.5, false, "1:00:00"},   {-3, false, "0:00"},
        {65.34, true, "1:05.3"},     {65.35, true, "1:05.4"},      {3725.25, true, "1:02:05.3"},
        {59.96, true, "1:00.0"},     {3599.96, true, "1:00:00.0"}, {-3, true, "0:00.0"},
        {0.04, true, "0:00.0"},      {0.05, true, "0:00.1"},
        {std::numeric_limits<double>::quiet_NaN(), false, "0:00"},
        {std::numeric_limits<double>::quiet_NaN(), true, "0:00.0"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TimeFormatting::clock(c.seconds, c.tenths), c.expected)
            << c.seconds << (c.tenths ? " with tenths" : "");
}

TEST(TimeFormattingClock, HugeValuesGiveADefinedText)
{
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(TimeFormatting::clock(inf, false), TimeFormatting::clock(1e300, false));
    EXPECT_FALSE(TimeFormatting::clock(inf, true).isEmpty());
    EXPECT_EQ(TimeFormatting::clock(1e18, false), TimeFormatting::clock(1e15, false));
}

TEST(ClipLabels, DurationAndResolution)
{
    ClipItem clip(QUrl::fromLocalFile("/c/a.mov"));
    EXPECT_EQ(clip.durationLabel(), QString(QChar(0x2014)));
    clip.duration = 0;
    EXPECT_EQ(clip.durationLabel(), "0:00");
    clip.duration = 65;
    EXPECT_EQ(clip.durationLabel(), "1:05");
    clip.inPoint = 3;
    clip.outPoint = 15;
    EXPECT_EQ(clip.durationLabel(), "0:12 / 1:05");

    EXPECT_EQ(clip.resolutionLabel(), "");
    clip.width = 1920;
    EXPECT_EQ(clip.resolutionLabel(), "") << "height still unknown";
    clip.height = 1080;
    EXPECT_EQ(clip.resolutionLabel(), QString("1920") + QChar(0x00D7) + "1080");
}

TEST(MediaTypeRoles, ByLowerCasedExtension)
{
    EXPECT_EQ(MediaType::videoExtensions().size(), 21);
    // Camera cards: AVCHD, HDV, JVC, DVD, DV and phone files.
    for (const char* name : {"00001.MTS", "a.m2ts", "HDV.M2T", "rec.ts", "MOV001.MOD", "MOV001.TOD",
                             "VTS_01_1.VOB", "tape.dv", "phone.3GP", "a.mpg", "a.MPEG"})
        EXPECT_TRUE(MediaType::isVideo(name)) << name;
    EXPECT_EQ(MediaType::lutExtensions().size(), 5);
    EXPECT_EQ(MediaType::watermarkExtensions().size(), 2);

    EXPECT_TRUE(MediaType::isVideo("/card/CLIP.MOV"));
    EXPECT_TRUE(MediaType::isVideo("x.braw"));
    EXPECT_TRUE(MediaType::isLut("/looks/look.CUBE"));
    EXPECT_TRUE(MediaType::isWatermark("logo.Svg"));
    EXPECT_FALSE(MediaType::isVideo("/card/CLIP"));
    EXPECT_FALSE(MediaType::isVideo("/card/mov"));
    EXPECT_FALSE(MediaType::isVideo("/card.mov/readme"));
    EXPECT_FALSE(MediaType::isLut("look.cube.txt"));
    EXPECT_EQ(MediaType::extensionOf("/a/b.tar.GZ"), "gz");
}

TEST(TimeFormattingTimeLeft, ShownOnceFivePercentOrThreeSecondsHavePassed)
{
    struct Case {
        double elapsed;
        double fraction;
        const char* expected;
    };
    const Case cases[] = {
        {2.9, 0.049, ""},              // too early to tell
        {2.9, 0.05, "about 1 min left"},
        {3, 0.01, "about 5 min left"},
        {10, 0, ""},                   // nothing done: no pace yet
        {12, 0.5, "about 15 s left"},  // seconds round up to fives
        {58, 0.5, "about 1 min left"},
        {600, 0.1, "about 1 h 30 min left"},
        {1800, 0.2, "about 2 h left"},
        {1e300, 0.5, "about 10000 h left"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TimeFormatting::timeLeft(c.elapsed, c.fraction), c.expected) << c.elapsed << " s, " << c.fraction;
}

TEST(TimeFormattingTimecode, FramesAtTheClipsRateWithDropFrameLabelsAt2997And5994)
{
    const double ntsc = 30000.0 / 1001, ntsc60 = 60000.0 / 1001, film = 24000.0 / 1001;
    const struct {
        double seconds;
        double fps;
        const char* text;
    } cases[] = {
        {0, 25, "00:00:00:00"},           {3661.5, 25, "01:01:01:12"},
        {1.0 / 30 - 1e-9, 30, "00:00:00:01"},  // a hair before a frame's start shows it
        {-2, 30, "00:00:00:00"},          {1799 / ntsc, ntsc, "00:00:59;29"},
        {1800 / ntsc, ntsc, "00:01:00;02"},  {17982 / ntsc, ntsc, "00:10:00;00"},
        {3600 / ntsc60, ntsc60, "00:01:00;04"}, {24 / film, film, "00:00:01:00"},
        {1.25, 0, "0:01.3"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TimeFormatting::timecode(c.seconds, c.fps), c.text) << c.seconds << " s at " << c.fps;
}
