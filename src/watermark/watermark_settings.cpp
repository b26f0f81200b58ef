#include "watermark/watermark_settings.h"

#include <algorithm>

namespace tavrelune {

namespace {

// Clamps without std::clamp's precondition (lo <= hi) and maps NaN to the
// lower bound, so garbage input still lands inside the frame.
double limited(double value, double lower, double upper)
{
    if (!(value > lower))
        return lower;
    return value < upper ? value : upper;
}

bool usableAspect(double aspect)
{
    return aspect > WatermarkSettings::minimumAspect;
}

}  // namespace

double WatermarkSettings::heightFraction(double imageAspect, double videoAspect) const
{
    if (!usableAspect(imageAspect) || !usableAspect(videoAspect))
        return widthFraction;
    return videoAspect * widthFraction / imageAspect;
}

WatermarkSettings WatermarkSettings::clamped(double imageAspect, double videoAspect) const
{
    WatermarkSettings result = *this;
    result.opacity = limited(opacity, minimumOpacity, maximumOpacity);
    result.widthFraction = limited(widthFraction, minimumWidthFraction, maximumWidthFraction);
    double height = result.heightFraction(imageAspect, videoAspect);
    if (height > maximumHeightFraction) {
        result.widthFraction *= maximumHeightFraction / std::max(height, minimumAspect);
        height = result.heightFraction(imageAspect, videoAspect);
    }
    result.x = limited(x, 0, std::max(0.0, 1 - result.widthFraction));
    result.y = limited(y, 0, std::max(0.0, 1 - height));
    return result;
}

QString rawValue(WatermarkCorner corner)
{
    switch (corner) {
    case WatermarkCorner::topLeft: return QStringLiteral("topLeft");
    case WatermarkCorner::topRight: return QStringLiteral("topRight");
    case WatermarkCorner::bottomLeft: return QStringLiteral("bottomLeft");
    case WatermarkCorner::bottomRight: return QStringLiteral("bottomRight");
    }
    return {};
}

std::optional<WatermarkCorner> watermarkCornerFromRawValue(const QString& raw)
{
    for (WatermarkCorner corner : allWatermarkCorners)
        if (rawValue(corner) == raw)
            return corner;
    return std::nullopt;
}

}  // namespace tavrelune
