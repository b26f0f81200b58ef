#include "watermark/watermark_image.h"

#include "grading/pixel_image.h"
#include "model/media_type.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

namespace tavrelune {

namespace {

QImage renderSvg(const QByteArray& svg, QSize pixels)
{
    QImage canvas(pixels, QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull())
        return {};
    canvas.fill(Qt::transparent);
    QSvgRenderer renderer(svg);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)));
    return canvas;
}

}  // namespace

std::optional<WatermarkImage> WatermarkImage::load(const QString& path)
{
    WatermarkImage image;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();

    QSvgRenderer svg(bytes);
    if (svg.isValid()) {
        const QSizeF size = svg.defaultSize();
        if (size.width() > 0 && size.height() > 0) {
            image.svgData_ = bytes;
            image.intrinsicSize_ = size;
            image.display_ = renderSvg(bytes, size.toSize().expandedTo(QSize(1, 1)));
            return image;
        }
    }

    QImageReader reader(path);
    reader.setAutoTransform(false);
    QImage bitmap = reader.read();
    if (bitmap.isNull() || bitmap.width() <= 0 || bitmap.height() <= 0) {
        // Second chance through the grade's own loader (deep and float images).
        const auto pixels = PixelImage::load(path);
        if (!pixels || pixels->display.isNull())
            return std::nullopt;
        bitmap = pixels->display;
    }
    image.display_ = bitmap;
    return image;
}

QSizeF WatermarkImage::pixelSize() const
{
    if (!svgData_.isEmpty())
        return {std::max(intrinsicSize_.width(), 1.0), std::max(intrinsicSize_.height(), 1.0)};
    return QSizeF(display_.size());
}

double WatermarkImage::aspect() const
{
    const QSizeF size = pixelSize();
    return size.height() > 0 ? size.width() / size.height() : 1.0;
}

QSize WatermarkImage::rasterPixelSize(const QString& path, int maxDimension) const
{
    const QSizeF size = pixelSize();
    const double longest = std::max(size.width(), size.height());
    const bool isSvg = MediaType::extensionOf(path) == "svg";
    const double target = isSvg || longest > maxDimension ? maxDimension : longest;
    const double scale = longest > 0 ? target / longest : 1.0;
    const auto side = [scale](double value) {
        return std::max(static_cast<int>(std::round(value * scale)), smallestSide);
    };
    return {side(size.width()), side(size.height())};
}

std::optional<QByteArray> WatermarkImage::pngData(QSize pixels) const
{
    if (pixels.width() <= 0 || pixels.height() <= 0)
        return std::nullopt;
    QImage canvas;
    if (!svgData_.isEmpty()) {
        canvas = renderSvg(svgData_, pixels);
    } else {
        // Qt's smooth scaling averages every source pixel under an output
        // pixel when reducing (premultiplied, so transparent pixels do not
        // darken edges); a painter's bilinear sampling would drop thin strokes
        // at 4x and more.
        canvas = display_.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                     .scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (canvas.isNull())
        return std::nullopt;
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !canvas.convertToFormat(QImage::Format_ARGB32).save(&buffer, "PNG"))
        return std::nullopt;
    return png;
}

}  // namespace tavrelune
