#include "watermark/watermark_placement.h"

#include <gtest/gtest.h>

namespace tavrelune {
namespace {

using namespace WatermarkPlacement;

constexpr double wide = 16.0 / 9.0;

void expectRect(const QRectF& actual, const QRectF& expected)
{
    EXPECT_NEAR(actual.x(), expected.x(), 1e-9);
    EXPECT_NEAR(actual.y(), expected.y(), 1e-9);
    EXPECT_NEAR(actual.width(), expected.width(), 1e-9);
    EXPECT_NEAR(actual.height(), expected.height(), 1e-9);
}

TEST(WatermarkPlacement, VideoRectAndWatermarkRectFollowTheClipAndTheExportClamp)
{
    const QRectF video = fittedVideoRect({960, 600}, QSizeF(1920, 1080), wide);
    expectRect(video, {0, 30, 960, 540});
    WatermarkSettings square;  // the default placement of a square image
    square.y = 0.64;
    expectRect(placedRect(video, square, 1, wide), {748.8, 30 + 345.6, 172.8, 172.8});

    // Unknown clip size: the fallback aspect, never below 0.01.
    expectRect(fittedVideoRect({400, 300}, std::nullopt, 2), {0, 50, 400, 200});
    const QRectF sliver = fittedVideoRect({400, 300}, QSizeF(0, 0), 0);
    EXPECT_NEAR(sliver.width() / sliver.height(), minimumVideoAspect, 1e-12);
    expectRect(fittedVideoRect({1, 300}, QSizeF(1920, 1080), wide), {0, 0, 1, 300});

    // A placement beyond the frame is drawn where the export clamps it.
    WatermarkSettings outside;
    outside.x = 0.95;
    outside.widthFraction = 0.9;
    EXPECT_NEAR(placedRect(video, outside, 4, wide).right(), video.right(), 1e-9);
}

TEST(WatermarkPlacement, HandlesComeBeforeTheBodyAndTheHitAreaIsGrownByEightPixels)
{
    const QRectF placed(100, 100, 80, 40);
    EXPECT_EQ(handleAt(placed, {103, 98}), WatermarkCorner::topLeft);
    EXPECT_EQ(handleAt(placed, {181, 141}), WatermarkCorner::bottomRight);
    EXPECT_EQ(handleAt(placed, {140, 120}), std::nullopt);
    EXPECT_TRUE(inHitArea(placed, {93, 120}));
    EXPECT_FALSE(inHitArea(placed, {91, 120}));
    EXPECT_FALSE(inHitArea(placed, {140, 149}));
}

TEST(WatermarkPlacement, DragsMoveAndResizeFromThePlacementAtTheirStart)
{
    const QRectF video(0, 30, 960, 540);
    WatermarkSettings origin;
    origin.x = 0.5;
    origin.y = 0.5;
    origin.widthFraction = 0.2;

    EXPECT_EQ(moved(origin, {96, -54}, video), (Layout{0.6, 0.4, std::nullopt}));

    // A left handle widens to the left; the right and bottom edges stay.
    const Layout wider = resized(origin, WatermarkCorner::topLeft, {-96, 40}, video, 1, wide);
    ASSERT_TRUE(wider.widthFraction);
    EXPECT_NEAR(*wider.widthFraction, 0.3, 1e-12);
    EXPECT_NEAR(wider.x + *wider.widthFraction, 0.7, 1e-12);
    const double oldBottom = origin.y + origin.heightFraction(1, wide);
    WatermarkSettings after = origin;
    after.widthFraction = *wider.widthFraction;
    EXPECT_NEAR(wider.y + after.heightFraction(1, wide), oldBottom, 1e-12);

    // A bottom-right handle keeps the top-left corner.
    const Layout right = resized(origin, WatermarkCorner::bottomRight, {48, 0}, video, 1, wide);
    EXPECT_EQ(right.x, 0.5);
    EXPECT_EQ(right.y, 0.5);
    EXPECT_NEAR(*right.widthFraction, 0.25, 1e-12);

    // Dragged far past the opposite edge, the width stops at 0.05.
    EXPECT_EQ(*resized(origin, WatermarkCorner::topRight, {-2000, 0}, video, 1, wide).widthFraction, 0.05);
    const Layout squeezed = resized(origin, WatermarkCorner::bottomLeft, {2000, 0}, video, 1, wide);
    EXPECT_EQ(*squeezed.widthFraction, 0.05);
    EXPECT_NEAR(squeezed.x, 0.65, 1e-12) << "the right edge stays put";
}

}  // namespace
}  // namespace tavrelune
