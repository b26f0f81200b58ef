#include "model/clip_item.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

using namespace tavrelune;

namespace {

struct TrimCase {
    const char* label;
    std::optional<double> duration;
    double inPoint;
    std::optional<double> outPoint;
    double expectedIn;
    double expectedOut;
    std::optional<double> expectedTrimmed;
    bool expectedIsTrimmed;
};

ClipItem clipWith(std::optional<double> duration, double inPoint, std::optional<double> outPoint)
{
    ClipItem clip(QUrl::fromLocalFile("/clips/A001.mov"));
    clip.duration = duration;
    clip.inPoint = inPoint;
    clip.outPoint = outPoint;
    return clip;
}

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const TrimCase trimCases[] = {
    {"untrimmed", 10, 0, std::nullopt, 0, 10, 10, false},
    {"in at tolerance", 10, 0.04, std::nullopt, 0.04, 10, 9.96, false},
    {"in past tolerance", 10, 0.05, std::nullopt, 0.05, 10, 9.95, true},
    {"out at tolerance", 10, 0, 9.96, 0, 9.96, 9.96, false},
    {"out past tolerance", 10, 0, 9.95, 0, 9.95, 9.95, true},
    {"in beyond end keeps minimum span", 10, 20, std::nullopt, 9.88, 10, 0.12, true},
    {"negative out raised to minimum span", 10, 0, -5, 0, 0.12, 0.12, true},
    {"clip shorter than minimum span", 0.1, 0.05, std::nullopt, 0, 0.1, 0.1, false},
    {"out before in", 10, 9, 5, 9, 5, 0, true},
    {"negative in", 10, -3, std::nullopt, 0, 10, 10, false},
    {"unprobed", std::nullopt, 2, 7, 2, 7, std::nullopt, false},
    {"unprobed without out", std::nullopt, -1, std::nullopt, 0, 0, std::nullopt, false},
    {"zero duration", 0, 1, std::nullopt, 1, 0, std::nullopt, false},
    {"not-a-number in point", 10, notANumber, std::nullopt, 0, 10, 10, false},
    {"not-a-number out point", 10, 0, notANumber, 0, 10, 10, false},
    {"infinite out point", 10, 0, infinity, 0, 10, 10, false},
    {"not-a-number duration", notANumber, 1, 4, 1, 4, std::nullopt, false},
};

}  // namespace

TEST(ClipItemTrim, EffectivePointsTrimmedDurationAndIsTrimmed)
{
    for (const TrimCase& c : trimCases) {
        SCOPED_TRACE(c.label);
        const ClipItem clip = clipWith(c.duration, c.inPoint, c.outPoint);
        EXPECT_NEAR(clip.effectiveInPoint(), c.expectedIn, 1e-9);
        EXPECT_NEAR(clip.effectiveOutPoint(), c.expectedOut, 1e-9);
        ASSERT_EQ(clip.trimmedDuration().has_value(), c.expectedTrimmed.has_value());
        if (c.expectedTrimmed) {
            EXPECT_NEAR(*clip.trimmedDuration(), *c.expectedTrimmed, 1e-9);
        }
        EXPECT_EQ(clip.isTrimmed(), c.expectedIsTrimmed);
    }
}

TEST(ClipItemTrim, PlayheadStaysInsideTheTrimWindow)
{
    ClipItem clip = clipWith(10, 3, 8);
    clip.previewFraction = 0.2;
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 3);
    clip.previewFraction = 0.9;
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 8);
    clip.previewFraction = 0.5;
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 5);
    clip.previewFraction = notANumber;
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 3);

    clip = clipWith(10, 9, 5);  // crossed points: the out point wins
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 5);

    clip = clipWith(std::nullopt, 2, 7);  // unprobed: min(out, max(0, in))
    clip.previewFraction = 0.9;
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 2);
    clip = clipWith(std::nullopt, 2, std::nullopt);
    EXPECT_DOUBLE_EQ(clip.playheadInWindow(), 0);
}
