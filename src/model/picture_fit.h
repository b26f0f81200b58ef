// Fitting a picture into an area: scaled uniformly to fit and centred, the
// rule every view of the video follows (the live views, the still view and
// the watermark placement), so they all agree on where the video is.
//
// Pure; any thread. Units are whatever the caller measures both sizes in.
#pragma once

#include <QRectF>
#include <QSizeF>

namespace tavrelune {

// `picture` scaled uniformly to fit `area` and centred in it; a picture
// without a positive size gives an empty rectangle at the centre.
QRectF fitCentred(QSizeF picture, QSizeF area);

}  // namespace tavrelune
