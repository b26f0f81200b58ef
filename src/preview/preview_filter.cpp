#include "preview/preview_filter.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

PreviewFilter previewFilterFor(const VideoTrackShape& track, int maximumSide)
{
    if (track.width <= 0 || track.height <= 0)
        return {};
    // Display size with square pixels, as mpv computes it: the side the
    // aspect stretches grows, the other stays.
    const double aspect = track.pixelAspect > 0 && std::isfinite(track.pixelAspect) ? track.pixelAspect : 1.0;
    double width = static_cast<double>(track.width);
    double height = static_cast<double>(track.height);
    if (aspect > 1)
        width *= aspect;
    else
        height /= aspect;

    const int turns = ((static_cast<int>(std::lround(track.rotation / 90.0)) % 4) + 4) % 4;
    const bool sideways = turns % 2 == 1;
    const double scale = std::min(1.0, maximumSide / std::max(width, height));
    const int scaledWidth = std::max(1, static_cast<int>(std::lround(width * scale)));
    const int scaledHeight = std::max(1, static_cast<int>(std::lround(height * scale)));

    static const char* const turn[] = {"", ",transpose=clock", ",hflip,vflip", ",transpose=cclock"};
    PreviewFilter filter;
    filter.frameSize = sideways ? QSize(scaledHeight, scaledWidth) : QSize(scaledWidth, scaledHeight);
    QString toRgb;
    if (!track.scalerReadOptions.isEmpty() && !track.deliveryTable.isEmpty())
        toRgb = QStringLiteral(":%1,format=gbrp16le,lut3d=file=%2:interp=trilinear,format=bgr0,"
                               "setparams=range=pc:color_primaries=bt709:color_trc=bt709:colorspace=gbr")
                    .arg(track.scalerReadOptions, track.deliveryTable);
    filter.mpvFilter = QStringLiteral("lavfi=[scale=w=%1:h=%2:flags=bilinear%3,setsar=1%4]")
                           .arg(scaledWidth)
                           .arg(scaledHeight)
                           .arg(toRgb, QLatin1String(turn[turns]));
    return filter;
}

}  // namespace tavrelune
