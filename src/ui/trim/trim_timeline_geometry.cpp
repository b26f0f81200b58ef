#include "ui/trim/trim_timeline_geometry.h"

#include <algorithm>
#include <cmath>

namespace tavrelune::trim {

namespace {

// Limits to [0, 1]; not-a-number counts as 0.
double unit(double value)
{
    if (!(value > 0))
        return 0;
    return std::min(value, 1.0);
}

}  // namespace

QRectF TrimTimelineGeometry::track() const { return bounds.adjusted(9, 13, -9, -13); }

double TrimTimelineGeometry::fraction(double seconds) const
{
    return duration > 0 ? unit(seconds / duration) : 0;
}

double TrimTimelineGeometry::x(double seconds) const
{
    const QRectF t = track();
    return t.left() + fraction(seconds) * t.width();
}

double TrimTimelineGeometry::time(double x) const
{
    const QRectF t = track();
    if (!(t.width() > 0) || !(duration > 0))
        return 0;
    return unit((x - t.left()) / t.width()) * duration;
}

std::optional<DragTarget> TrimTimelineGeometry::hitTarget(QPointF point) const
{
    const struct {
        DragTarget target;
        double distance;
    } candidates[] = {
        {DragTarget::inHandle, std::abs(point.x() - x(inPoint))},
        {DragTarget::outHandle, std::abs(point.x() - x(outPoint))},
        {DragTarget::playhead, std::abs(point.x() - x(playhead))},
    };
    auto nearest = candidates[0];
    for (const auto& candidate : candidates)
        if (candidate.distance < nearest.distance)
            nearest = candidate;
    if (nearest.distance <= grabDistance)
        return nearest.target;
    // A click on or near the track moves the playhead there.
    if (track().adjusted(-4, -10, 4, 10).contains(point))
        return DragTarget::playhead;
    return std::nullopt;
}

QRectF TrimTimelineGeometry::keptRange() const
{
    const QRectF t = track();
    const double left = x(inPoint);
    return {left, t.top(), std::max(x(outPoint) - left, 1.0), t.height()};
}

QRectF TrimTimelineGeometry::handle(double x) const
{
    return {x - 3.5, bounds.top() + 6, 7, bounds.height() - 12};
}

QRectF TrimTimelineGeometry::playheadLine(double x) const
{
    return {x - 0.75, bounds.top() + 4, 1.5, bounds.height() - 8};
}

QPolygonF TrimTimelineGeometry::playheadTip(double x) const
{
    const double top = bounds.top();
    QPolygonF tip;
    tip << QPointF(x, top + 2) << QPointF(x + 5, top + 9) << QPointF(x - 5, top + 9);
    return tip;
}

}  // namespace tavrelune::trim
