#include "watermark/watermark_placement.h"

#include "model/picture_fit.h"

#include <QLineF>
#include <algorithm>
#include <cmath>

namespace tavrelune::WatermarkPlacement {

QRectF fittedVideoRect(QSizeF view, std::optional<QSizeF> clipSize, double fallbackAspect)
{
    if (view.width() <= 1 || view.height() <= 1)
        return {QPointF(0, 0), view};
    if (clipSize && clipSize->width() >= 1 && clipSize->height() >= 1)
        return fitCentred(*clipSize, view);
    const double aspect = std::max(std::isfinite(fallbackAspect) ? fallbackAspect : 0.0, minimumVideoAspect);
    const double height = std::min(view.height(), view.width() / aspect);
    const double width = aspect * height;
    return {QPointF((view.width() - width) / 2, (view.height() - height) / 2), QSizeF(width, height)};
}

QRectF placedRect(const QRectF& video, const WatermarkSettings& settings, double imageAspect,
                  double videoAspect)
{
    const WatermarkSettings placed = settings.clamped(imageAspect, videoAspect);
    return {video.left() + video.width() * placed.x, video.top() + video.height() * placed.y,
            video.width() * placed.widthFraction,
            video.height() * placed.heightFraction(imageAspect, videoAspect)};
}

QPointF handleCentre(const QRectF& placed, WatermarkCorner corner)
{
    switch (corner) {
    case WatermarkCorner::topLeft: return placed.topLeft();
    case WatermarkCorner::topRight: return placed.topRight();
    case WatermarkCorner::bottomLeft: return placed.bottomLeft();
    case WatermarkCorner::bottomRight: return placed.bottomRight();
    }
    return placed.center();
}

std::optional<WatermarkCorner> handleAt(const QRectF& placed, QPointF point)
{
    std::optional<WatermarkCorner> nearest;
    double nearestDistance = handleGrabRadius;
    for (WatermarkCorner corner : allWatermarkCorners) {
        const double distance = QLineF(handleCentre(placed, corner), point).length();
        if (distance <= nearestDistance) {
            nearest = corner;
            nearestDistance = distance;
        }
    }
    return nearest;
}

bool inHitArea(const QRectF& placed, QPointF point)
{
    return placed.adjusted(-hitMargin, -hitMargin, hitMargin, hitMargin).contains(point);
}

Layout moved(const WatermarkSettings& origin, QPointF translation, const QRectF& video)
{
    return {origin.x + translation.x() / std::max(video.width(), 1.0),
            origin.y + translation.y() / std::max(video.height(), 1.0), std::nullopt};
}

Layout resized(const WatermarkSettings& origin, WatermarkCorner corner, QPointF translation,
               const QRectF& video, double imageAspect, double videoAspect)
{
    // Only the horizontal travel counts: the aspect is fixed, so the width
    // decides the size.
    const double dx = translation.x() / std::max(video.width(), 1.0);
    const double oldHeight = origin.heightFraction(imageAspect, videoAspect);
    const bool leftHandle = corner == WatermarkCorner::topLeft || corner == WatermarkCorner::bottomLeft;
    const bool topHandle = corner == WatermarkCorner::topLeft || corner == WatermarkCorner::topRight;

    WatermarkSettings result = origin;
    double width = leftHandle ? origin.x + origin.widthFraction - (origin.x + dx) : origin.widthFraction + dx;
    width = std::max(width, WatermarkSettings::minimumWidthFraction);
    // The right edge stays put when a left handle is dragged.
    result.x = leftHandle ? origin.x + origin.widthFraction - width : origin.x;
    result.widthFraction = width;
    const double height = result.heightFraction(imageAspect, videoAspect);
    result.y = topHandle ? origin.y + oldHeight - height : origin.y;
    return {result.x, result.y, result.widthFraction};
}

}  // namespace tavrelune::WatermarkPlacement
