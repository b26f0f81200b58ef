// Timeline arithmetic on a 218 × 34 control: the track runs from x = 9 to
// x = 209 (200 px) and from y = 13 to y = 21, so on a 10 s clip one second is
// 20 px and x(t) = 9 + 20 t.
#include "ui/trim/trim_timeline_geometry.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tavrelune::trim;

namespace {

TrimTimelineGeometry timeline(double in, double out, double playhead, double duration = 10)
{
    return {QRectF(0, 0, 218, 34), duration, in, out, playhead};
}

std::string name(std::optional<DragTarget> target)
{
    if (!target)
        return "none";
    switch (*target) {
    case DragTarget::inHandle:
        return "in";
    case DragTarget::outHandle:
        return "out";
    case DragTarget::playhead:
        return "playhead";
    }
    return "?";
}

}  // namespace

TEST(TrimTimelineGeometry, PointerGrabsTheNearestItemThenTheTrack)
{
    const struct {
        double in, out, playhead;
        QPointF point;
        const char* want;
    } cases[] = {
        {2, 8, 5, {49, 17}, "in"},
        {2, 8, 5, {57, 0}, "in"},           // 8 px away, at any height
        {2, 8, 5, {58, 17}, "playhead"},    // 9 px from the handle: the track takes it
        {2, 8, 5, {58, 30}, "playhead"},    // the track grown by 10 px downward
        {2, 8, 5, {58, 2}, "none"},         // 11 px above the track
        {2, 8, 5, {6, 17}, "playhead"},     // grown by 4 px left of the track
        {2, 8, 5, {4, 17}, "none"},
        {2, 8, 5, {214, 17}, "none"},
        {5, 5, 0, {109, 17}, "in"},         // in and out together: in first
        {5, 5.15, 0, {111, 17}, "out"},     // out strictly nearer
        {2, 8, 2, {49, 17}, "in"},          // a handle before the playhead
        {2, 8, 2.3, {54, 17}, "playhead"},
        {-3, 40, 5, {9, 17}, "in"},         // out-of-range times sit at the ends
        {-3, 40, 5, {209, 17}, "out"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(name(timeline(c.in, c.out, c.playhead).hitTarget(c.point)), c.want)
            << "in " << c.in << " out " << c.out << " playhead " << c.playhead << " at " << c.point.x() << ","
            << c.point.y();

    // Without a clip every item sits at the track's left end.
    const TrimTimelineGeometry empty = timeline(4, 6, 5, 0);
    EXPECT_EQ(name(empty.hitTarget({12, 17})), "in");
    EXPECT_EQ(name(empty.hitTarget({100, 17})), "playhead");
}

TEST(TrimTimelineGeometry, PositionsAndTimesStayOnTheTrack)
{
    const TrimTimelineGeometry g = timeline(2, 8, 5);
    const struct {
        double x, seconds;
    } drags[] = {{9, 0}, {109, 5}, {59, 2.5}, {209, 10}, {0, 0}, {-50, 0}, {300, 10}};
    for (const auto& d : drags)
        EXPECT_DOUBLE_EQ(g.time(d.x), d.seconds) << "x " << d.x;
    for (const double seconds : {0.0, 2.5, 10.0})
        EXPECT_DOUBLE_EQ(g.time(g.x(seconds)), seconds);
    EXPECT_EQ(g.x(-1), 9);
    EXPECT_EQ(g.x(11), 209);
    EXPECT_EQ(g.x(std::nan("")), 9);
    EXPECT_EQ(timeline(2, 8, 5, 0).time(150), 0);
    EXPECT_EQ((TrimTimelineGeometry{QRectF(0, 0, 18, 34), 10, 0, 1, 0}.time(9)), 0) << "a track of no width";
    EXPECT_EQ(timeline(6, 3, 0).keptRange(), QRectF(129, 13, 1, 8)) << "out before in: 1 px at the in handle";
}
