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
    const QString size = QStringLiteral("w=%1:h=%2").arg(scaledWidth).arg(scaledHeight);
    const QString resize =
        track.zscaleReadOptions.isEmpty() || track.lightTable.isEmpty()
            ? QStringLiteral("scale=%1:flags=bilinear").arg(size)
            : QStringLiteral("zscale=%1:filter=bilinear:%2,format=gbrpf32le,lut3d=file=%3:interp=trilinear,"
                             "lut1d=file=%4:interp=linear,format=bgr0,"
                             "setparams=range=pc:color_primaries=bt709:color_trc=bt709:colorspace=gbr")
                  .arg(size, track.zscaleReadOptions, track.lightTable, track.encodingTable);
    // Frames coded as fields are made whole first, as the export does; others
    // pass through untouched.
    filter.mpvFilter = QStringLiteral("lavfi=[bwdif=mode=send_frame:deint=interlaced,%1,setsar=1%2]")
                           .arg(resize, QLatin1String(turn[turns]));
    return filter;
}

}  // namespace tavrelune
