// Which grade a clip row mentions, by the two sets of thresholds.
#include "model/clip_item.h"
#include "ui/clip_row_text.h"

#include <gtest/gtest.h>

using namespace tavrelune;

TEST(ClipRowText, AdjustmentTextFollowsItsThresholds)
{
    const struct {
        GradeValues grade;
        bool shown;
        const char* text;
    } cases[] = {
        {{}, false, ""},
        {{0.3, 1, 1, 12}, true, "+0.3 EV \u00B7 WB +12"},
        {{0, 1.0, 0.8, 0}, true, "Sat 0.80\u00D7"},
        {{-0.5, 1.2, 1, -25, 8}, true, "-0.5 EV \u00B7 1.20\u00D7 \u00B7 WB -25 \u00B7 Tint +8"},
        {{0.005, 1, 1, 0}, true, ""},          // shown, but too small to name
        {{0.0005, 1, 1, 0.5, -0.5}, false, ""},  // at every threshold: neutral
        {{0, 1.001, 1, 0}, true, ""},
        {{0, 1, 1, 0.51}, true, "WB +1"},
        {{0.011, 1.011, 0.989, 0}, true, "+0.0 EV \u00B7 1.01\u00D7 \u00B7 Sat 0.99\u00D7"},
    };
    for (const auto& each : cases) {
        ClipItem clip;
        clip.grade = each.grade;
        const std::string label = testing::PrintToString(std::vector<double>{
            each.grade.exposure, each.grade.contrast, each.grade.saturation, each.grade.temperature, each.grade.tint});
        EXPECT_EQ(ui::carriesGrade(clip), each.shown) << label;
        EXPECT_EQ(ui::adjustmentLabel(clip), QString::fromUtf8(each.text)) << label;
    }
}

TEST(ClipRowText, DurationAsTimecodeNeedsTheRate)
{
    ClipItem clip;
    clip.duration = 20;
    clip.outPoint = 12;
    const ui::TimeStyle timecode{.timecode = true};
    EXPECT_EQ(ui::durationText(clip, timecode), "0:12 / 0:20") << "no rate known: the clock";
    clip.fps = 25;
    EXPECT_EQ(ui::durationText(clip, {}), "0:12 / 0:20");
    EXPECT_EQ(ui::durationText(clip, timecode), "00:00:12:00 / 00:00:20:00");
}
