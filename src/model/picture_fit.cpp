#include "model/picture_fit.h"

#include <algorithm>

namespace tavrelune {

QRectF fitCentred(QSizeF picture, QSizeF area)
{
    const QPointF centre(area.width() / 2, area.height() / 2);
    if (!(picture.width() > 0) || !(picture.height() > 0))
        return {centre, QSizeF(0, 0)};
    const double scale = std::min(area.width() / picture.width(), area.height() / picture.height());
    const QSizeF size = picture * scale;
    return {centre - QPointF(size.width() / 2, size.height() / 2), size};
}

}  // namespace tavrelune
