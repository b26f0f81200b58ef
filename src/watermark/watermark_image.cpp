#include "watermark/watermark_image.h"

#include "grading/pixel_image.h"
#include "model/media_type.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
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

std::optional<WatermarkImage> WatermarkImage::load(const QString& path, QString* reason)
{
    const auto fail = [reason](const QString& why) -> std::optional<WatermarkImage> {
        if (reason)
            *reason = why;
        return std::nullopt;
    };
    WatermarkImage image;
    QFile file(path);
    if (!file.exists())
        return fail(QStringLiteral("the file does not exist"));
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString().toLower());
    const QByteArray bytes = file.readAll();
    if (bytes.isEmpty())
        return fail(QStringLiteral("the file is empty"));

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

    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false);
    // The export never uses more than rasterLimit pixels a side, so a larger
    // bitmap is read reduced to that. Formats that cannot decode at a reduced
    // size (PNG) decode whole first: allow that up to 16384² pixels, far past
    // Qt's default limit of about 128 MB (a 6000×6000 image).
    const QSize stored = reader.size();
    if (stored.isValid() && std::max(stored.width(), stored.height()) > rasterLimit) {
        reader.setScaledSize(stored.scaled(rasterLimit, rasterLimit, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
        image.intrinsicSize_ = QSizeF(stored);
    }
    reader.setAllocationLimit(1024);
    QImage bitmap = reader.read();
    if (bitmap.isNull() || bitmap.width() <= 0 || bitmap.height() <= 0) {
        const QString readerReason = reader.canRead() ? reader.errorString().toLower() : QString();
        // Second chance through the grade's own loader (deep and float images).
        const auto pixels = PixelImage::load(path);
        if (!pixels || pixels->display.isNull())
            return fail(readerReason.isEmpty() ? QStringLiteral("it is not an image in a format this system reads")
                                               : readerReason);
        bitmap = pixels->display;
        image.intrinsicSize_ = {};
    }
    image.display_ = bitmap;
    return image;
}

QSizeF WatermarkImage::pixelSize() const
{
    if (!svgData_.isEmpty() || !intrinsicSize_.isEmpty())
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
