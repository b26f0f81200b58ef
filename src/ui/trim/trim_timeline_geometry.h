// Where the trim timeline draws its track, kept range, handles and playhead,
// and which of them a pointer position grabs. Kept apart from the widget so
// the arithmetic can be checked on tables of positions.
//
// Plain value type, any thread. Positions are widget pixels (y grows
// downward), times are seconds of the clip. Computed from the bounds given
// at each call, never cached.
#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <optional>

namespace tavrelune::trim {

// What a drag moves. Also the order in which ties are broken.
enum class DragTarget { inHandle, outHandle, playhead };

struct TrimTimelineGeometry {
    // The control's natural height; the track is 8 px high at it.
    static constexpr double intrinsicHeight = 34;
    // Horizontal distance within which a handle or the playhead is grabbed.
    static constexpr double grabDistance = 8;

    QRectF bounds;
    double duration = 0;  // 0 or less: no clip, everything at the track's start
    double inPoint = 0;
    double outPoint = 0;
    double playhead = 0;

    // The bounds inset by 9 px left and right, 13 px top and bottom.
    QRectF track() const;
    // `seconds` as a part of the duration, in [0, 1]; 0 without a duration.
    double fraction(double seconds) const;
    // Horizontal position of a time on the track.
    double x(double seconds) const;
    // Time under a horizontal position, limited to [0, duration].
    double time(double x) const;

    // The nearest of in handle, out handle and playhead within the grab
    // distance (ties: in, out, playhead); else the playhead when the point
    // is on or near the track; else nothing.
    std::optional<DragTarget> hitTarget(QPointF point) const;

    // Shapes to fill. The kept range is never narrower than 1 px.
    QRectF keptRange() const;
    QRectF handle(double x) const;
    QRectF playheadLine(double x) const;
    QPolygonF playheadTip(double x) const;
};

}  // namespace tavrelune::trim
