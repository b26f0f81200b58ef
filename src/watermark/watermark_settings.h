// The watermark the user places over every exported clip, and the one
// clamping rule shared by the preview and the export.
//
// Plain value types, safe to copy between threads. Positions and sizes are
// fractions of the video frame (x of its width, y of its height, measured
// from the top-left corner), so one placement fits clips of any resolution.
// Aspects are width divided by height.
#pragma once

#include "model/grade_values.h"

#include <QString>
#include <QUrl>
#include <array>
#include <optional>

namespace tavrelune {

struct WatermarkSettings {
    static constexpr double minimumWidthFraction = 0.05;
    static constexpr double maximumWidthFraction = 0.8;
    static constexpr double maximumHeightFraction = 0.96;
    static constexpr double minimumOpacity = 0.05;
    static constexpr double maximumOpacity = 1.0;
    // Aspects at or below this are treated as unknown and never divided by.
    static constexpr double minimumAspect = 0.001;
    // Gap kept to the right and bottom edges by the default placement.
    static constexpr double defaultMargin = 0.04;
    static constexpr double defaultWidthFraction = 0.18;

    std::optional<QUrl> url;  // the chosen image; none means no watermark
    double x = 0.78;
    double y = 0.82;
    double widthFraction = defaultWidthFraction;
    double opacity = 1.0;

    bool operator==(const WatermarkSettings&) const = default;

    bool isEnabled() const { return url.has_value(); }

    // Height as a fraction of the frame height; equals the width fraction
    // when either aspect is unusable.
    double heightFraction(double imageAspect, double videoAspect) const;

    // A copy brought inside the limits: opacity and width clamped, the width
    // shrunk until the height fits, then the position kept inside the frame.
    // `url` is left as it is.
    WatermarkSettings clamped(double imageAspect, double videoAspect) const;
};

// The watermark as prepared for one export: a PNG on disk plus its placement.
struct WatermarkOverlay {
    QString imagePath;
    double x = 0;
    double y = 0;
    double widthFraction = 0;
    double opacity = 1;
    double imageAspect = 1;  // the PNG's pixel width / pixel height

    bool operator==(const WatermarkOverlay&) const = default;
};

// Resize handles of the placement view.
enum class WatermarkCorner { topLeft, topRight, bottomLeft, bottomRight };

inline constexpr std::array<WatermarkCorner, 4> allWatermarkCorners{
    WatermarkCorner::topLeft, WatermarkCorner::topRight, WatermarkCorner::bottomLeft,
    WatermarkCorner::bottomRight};

// The case name ("topLeft", ...), which is also the handle's identity.
QString rawValue(WatermarkCorner corner);
// Exact match only.
std::optional<WatermarkCorner> watermarkCornerFromRawValue(const QString& raw);

// The watermark values the command line and job files accept: a position
// inside the frame (the window then keeps the whole image inside it, as
// when dragging), and the width and opacity the window's handles allow.
inline constexpr GradeRange watermarkPositionRange{0, 1};
inline constexpr GradeRange watermarkWidthRange{WatermarkSettings::minimumWidthFraction,
                                                WatermarkSettings::maximumWidthFraction};
inline constexpr GradeRange watermarkOpacityRange{WatermarkSettings::minimumOpacity,
                                                  WatermarkSettings::maximumOpacity};

}  // namespace tavrelune
