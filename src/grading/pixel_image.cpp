#include "grading/pixel_image.h"

#include <QImageReader>

namespace tavrelune {

std::optional<PixelImage> PixelImage::load(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(false);
    QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    image = image.convertToFormat(QImage::Format_ARGB32);
    if (image.isNull())
        return std::nullopt;
    return PixelImage{image, image};
}

}  // namespace tavrelune
