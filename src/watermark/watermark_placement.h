// Where the watermark sits on screen, and how dragging it moves and resizes
// it: the geometry behind the placement view, free of any widget.
//
// Pure functions of values; any thread. Rectangles are in the view's logical
// pixels (y downwards); placements are fractions of the video frame, as in
// WatermarkSettings. Aspects are width divided by height.
#pragma once

#include "watermark/watermark_settings.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>

namespace tavrelune::WatermarkPlacement {

// Smallest video aspect used when the clip's size is unknown.
inline constexpr double minimumVideoAspect = 0.01;
// Hit area around the watermark, on every side.
inline constexpr double hitMargin = 8;
// Distances a drag must cover before it moves or resizes anything.
inline constexpr double moveThreshold = 2;
inline constexpr double resizeThreshold = 1;
// A handle is drawn as a circle of this diameter and grabbed within this
// distance of its corner.
inline constexpr double handleDiameter = 10;
inline constexpr double handleGrabRadius = 8;
// A watermark narrower than this on screen is not drawn.
inline constexpr double smallestDrawnWidth = 4;

// The rectangle the video fills inside a view of `view`: fitted from the
// clip's pixel size when known (both sides at least 1), else from
// `fallbackAspect` (at least 0.01). A view of 1 pixel or less in either
// direction gives the whole view. Fitted as the live views fit frames
// (fitCentred).
QRectF fittedVideoRect(QSizeF view, std::optional<QSizeF> clipSize, double fallbackAspect);

// The watermark's rectangle inside `video`, with the placement clamped the
// way the export clamps it.
QRectF placedRect(const QRectF& video, const WatermarkSettings& settings, double imageAspect,
                  double videoAspect);

// Centre of the handle at `corner` of the watermark rectangle.
QPointF handleCentre(const QRectF& placed, WatermarkCorner corner);

// The handle under `point`, if any (nearest first when they overlap).
std::optional<WatermarkCorner> handleAt(const QRectF& placed, QPointF point);

// Whether `point` is within the watermark's hit area.
bool inHitArea(const QRectF& placed, QPointF point);

// A new placement asked for by a drag; the controller clamps it.
struct Layout {
    double x = 0;
    double y = 0;
    std::optional<double> widthFraction;

    bool operator==(const Layout&) const = default;
};

// Moving: `origin` is the placement when the drag began, `translation` the
// pointer's travel since then in pixels.
Layout moved(const WatermarkSettings& origin, QPointF translation, const QRectF& video);

// Resizing by the handle at `corner`: the width follows the horizontal
// travel, the height follows from the aspects, and the opposite corner
// stays in place. The width never goes below 0.05 here; the controller
// applies the upper limit.
Layout resized(const WatermarkSettings& origin, WatermarkCorner corner, QPointF translation,
               const QRectF& video, double imageAspect, double videoAspect);

}  // namespace tavrelune::WatermarkPlacement
