// A watermark image as chosen by the user (PNG, SVG or any image Qt reads),
// and its rendering into the PNG that ffmpeg overlays.
//
// Value type; any thread (QImage and SVG data are reentrant). Sizes are
// pixels; an SVG is measured by its intrinsic size and rendered as vectors
// at whatever size is asked, a bitmap is scaled.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QSizeF>
#include <QString>
#include <optional>

namespace tavrelune {

class WatermarkImage {
public:
    static constexpr int rasterLimit = 2048;  // largest side of the staged PNG
    static constexpr int smallestSide = 2;

    // None when the file cannot be read as an image of positive size; then
    // `reason`, when given, says why in a few words ("file not found",
    // "not an image Qt can read"). A bitmap larger than the export ever
    // uses is read already reduced to `rasterLimit` on its longest side, so
    // images of any size (6000×6000 and more) load in little memory.
    static std::optional<WatermarkImage> load(const QString& path, QString* reason = nullptr);

    // Pixel size of a bitmap; the intrinsic size of a vector image, each
    // side at least 1.
    QSizeF pixelSize() const;
    // Width / height, or 1 when the height is not positive.
    double aspect() const;

    // The image for on-screen display.
    const QImage& displayImage() const { return display_; }

    // Size to render for the export: an SVG always gets its longest side at
    // `maxDimension`, a bitmap is only ever reduced to it.
    QSize rasterPixelSize(const QString& path, int maxDimension = rasterLimit) const;

    // The whole image scaled to exactly `pixels` on a transparent canvas,
    // encoded as PNG; none when the size is empty or encoding fails.
    std::optional<QByteArray> pngData(QSize pixels) const;

private:
    QImage display_;        // bitmap, or the SVG drawn at its intrinsic size
    QByteArray svgData_;    // set for vector images
    QSizeF intrinsicSize_;  // vector images, and bitmaps read reduced (their stored size)
};

}  // namespace tavrelune
