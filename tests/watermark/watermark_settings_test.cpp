#include "watermark/watermark_settings.h"

#include <cmath>
#include <gtest/gtest.h>

// Designated initializers leave members at their defaults on purpose.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace tavrelune {
namespace {

constexpr double wide = 16.0 / 9.0;

WatermarkSettings clamped(double x, double y, double width, double opacity, double imageAspect,
                          double videoAspect = wide)
{
    return WatermarkSettings{.x = x, .y = y, .widthFraction = width, .opacity = opacity}
        .clamped(imageAspect, videoAspect);
}

TEST(WatermarkSettings, ClampsSizeOpacityAndPosition)
{
    EXPECT_DOUBLE_EQ(clamped(0, 0, 0.9, 1.5, 4).widthFraction, 0.8);
    EXPECT_DOUBLE_EQ(clamped(0, 0, 0.2, 1.5, 1).opacity, 1.0);
    EXPECT_DOUBLE_EQ(clamped(0.9, 0, 0.18, 1, 1).x, 0.82);
    EXPECT_DOUBLE_EQ(clamped(-0.2, 0, 0.18, 1, 1).x, 0);
    EXPECT_NEAR(clamped(0, 0.9, 0.18, 1, 1).y, 1 - 0.32, 1e-12);
    // Unusable aspects: the height is taken equal to the width.
    EXPECT_DOUBLE_EQ(clamped(0, 0.9, 0.3, 1, 0).y, 0.7);
    EXPECT_DOUBLE_EQ(clamped(0, 0.9, 0.3, 1, 2, 0).y, 0.7);
    EXPECT_EQ(clamped(NAN, NAN, NAN, NAN, NAN, NAN), (WatermarkSettings{.x = 0, .y = 0, .widthFraction = 0.05,
                                                                         .opacity = 0.05}));
}

TEST(WatermarkSettings, TooTallImageShrinksToTheHeightLimitAndKeepsItsFile)
{
    const WatermarkSettings square{.url = QUrl("file:///logo.svg"), .widthFraction = 0.8};
    const WatermarkSettings fitted = square.clamped(1, wide);
    EXPECT_NEAR(fitted.widthFraction, 0.54, 1e-12);
    EXPECT_NEAR(fitted.heightFraction(1, wide), 0.96, 1e-12);
    EXPECT_TRUE(fitted.isEnabled() && fitted.url == square.url);
}

}  // namespace
}  // namespace tavrelune
