// FFmpegService::filterGraph, escapeFilterPath and watermarkFilterComplex:
// the grade, size and watermark as ffmpeg filter-graph text.
#include "engine/ffmpeg_service.h"

#include "engine/decimal_text.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

namespace {

QString gradeValue(double value)
{
    return fixedDecimal(value, 4);
}

// Temperature moves red and blue apart in every range; tint moves green
// against both (less green is magenta), as the preview's gains do.
QString colorBalance(const GradeValues& grade)
{
    QStringList terms;
    if (grade.temperatureActs()) {
        const QString warm = gradeValue(grade.whiteBalanceShift());
        const QString cool = gradeValue(-grade.whiteBalanceShift());
        terms << QStringLiteral("rs=%1:rm=%1:rh=%1:bs=%2:bm=%2:bh=%2").arg(warm, cool);
    }
    if (grade.tintActs())
        terms << QStringLiteral("gs=%1:gm=%1:gh=%1").arg(gradeValue(-grade.tintShift()));
    return QStringLiteral("colorbalance=") + terms.join(QLatin1Char(':'));
}

}  // namespace

QStringList FFmpegService::gradeFilters(const std::optional<QString>& lutPath, const GradeValues& grade)
{
    QStringList filters;
    if (grade.exposureActs())
        filters << QStringLiteral("exposure=exposure=") + gradeValue(grade.exposure);
    if (lutPath && !lutPath->isEmpty())
        filters << QStringLiteral("lut3d=file=") + escapeFilterPath(*lutPath)
                       + QStringLiteral(":interp=tetrahedral");
    if (grade.whiteBalanceActs())
        filters << colorBalance(grade);

    QStringList eq;
    if (grade.contrastActs())
        eq << QStringLiteral("contrast=") + gradeValue(grade.contrast);
    if (grade.saturationActs())
        eq << QStringLiteral("saturation=") + gradeValue(std::clamp(grade.saturation, 0.0, 3.0));
    if (!eq.isEmpty())
        filters << QStringLiteral("eq=") + eq.join(QLatin1Char(':'));
    return filters;
}

QString FFmpegService::filterGraph(std::optional<QString> lutPath, const GradeValues& grade,
                                   std::optional<VideoNormalization> normalization,
                                   const QString& outputPixelFormat)
{
    // 16-bit RGB throughout the grade, so the LUT and the adjustments do not
    // band; the output format converts once at the end.
    QStringList filters{QStringLiteral("format=gbrp16le")};
    filters << gradeFilters(lutPath, grade);
    filters << sizeFilters(normalization);
    filters << QStringLiteral("format=") + outputPixelFormat;
    return filters.join(QLatin1Char(','));
}

QRect FFmpegService::partPicture(const VideoNormalization& frame, int64_t pictureWidth, int64_t pictureHeight)
{
    if (pictureWidth <= 0 || pictureHeight <= 0)
        return {0, 0, int(frame.width), int(frame.height)};
    // Even sides, so the picture's edges fall on whole chroma samples.
    const auto even = [](double length) { return std::max<int64_t>(2 * roundedToInteger(length / 2), 2); };
    int64_t width = frame.width;
    int64_t height = even(double(frame.width) * double(pictureHeight) / double(pictureWidth));
    if (height > frame.height) {
        height = frame.height;
        width = std::min(even(double(frame.height) * double(pictureWidth) / double(pictureHeight)), frame.width);
    }
    return {int((frame.width - width) / 2), int((frame.height - height) / 2), int(width), int(height)};
}

QStringList FFmpegService::sizeFilters(const std::optional<VideoNormalization>& normalization,
                                       int64_t pictureWidth, int64_t pictureHeight)
{
    if (!normalization) {
        // Chroma subsampling needs even sides: an odd side loses its last
        // row or column, so the pixels keep their shape (resampling by one
        // pixel would give the file a pixel aspect a hair off square).
        return {QStringLiteral("crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0")};
    }
    const QString width = QString::number(normalization->width);
    const QString height = QString::number(normalization->height);
    QStringList filters;
    if (pictureWidth > 0 && pictureHeight > 0) {
        // Where the watermark expects it (see partPicture).
        const QRect picture = partPicture(*normalization, pictureWidth, pictureHeight);
        filters << QStringLiteral("scale=%1:%2").arg(picture.width()).arg(picture.height())
                << QStringLiteral("pad=%1:%2:%3:%4").arg(width, height).arg(picture.x()).arg(picture.y());
    } else {
        filters << QStringLiteral("scale=%1:%2:force_original_aspect_ratio=decrease").arg(width, height)
                << QStringLiteral("pad=%1:%2:(ow-iw)/2:(oh-ih)/2").arg(width, height);
    }
    return filters << QStringLiteral("setsar=1")
                   << QStringLiteral("fps=") + fixedDecimal(std::clamp(normalization->fps, 1.0, 120.0), 3);
}

QString FFmpegService::escapeFilterPath(const QString& path)
{
    // Backslash first, so the backslashes added below are not doubled.
    QString escaped = path;
    for (const QChar special : {u'\\', u':', u'\'', u',', u'[', u']', u';'})
        escaped.replace(special, QStringLiteral("\\") + special);
    return escaped;
}

QString FFmpegService::watermarkFilterComplex(const QString& grade, const WatermarkOverlay& watermark,
                                              int64_t outputWidth, int64_t outputHeight,
                                              const QString& outputConversion, std::optional<QRect> picture)
{
    // Placed on the picture, which fills the frame unless a combined
    // export put bars around it.
    const QRect area = picture.value_or(QRect(0, 0, int(outputWidth), int(outputHeight)));
    const int64_t areaWidth = area.width();
    const int64_t areaHeight = area.height();
    const double videoAspect = static_cast<double>(areaWidth >= 2 ? areaWidth : 1)
                             / static_cast<double>(areaHeight >= 2 ? areaHeight : 1);
    const double imageAspect = std::max(watermark.imageAspect, WatermarkSettings::minimumAspect);
    WatermarkSettings placement;
    placement.x = watermark.x;
    placement.y = watermark.y;
    placement.widthFraction = watermark.widthFraction;
    placement.opacity = watermark.opacity;
    placement = placement.clamped(imageAspect, videoAspect);

    const auto w = std::max<int64_t>(
        roundedToInteger(placement.widthFraction * static_cast<double>(areaWidth)), 2);
    const auto h = std::max<int64_t>(roundedToInteger(static_cast<double>(w) / imageAspect), 2);
    // The top-left corner sits at the fractions, but never so far that the
    // image would cross the picture's right or bottom edge.
    const int64_t x = area.x() + std::min(
        std::max<int64_t>(areaWidth - w, 0),
        std::max<int64_t>(roundedToInteger(placement.x * static_cast<double>(areaWidth)), 0));
    const int64_t y = area.y() + std::min(
        std::max<int64_t>(areaHeight - h, 0),
        std::max<int64_t>(roundedToInteger(placement.y * static_cast<double>(areaHeight)), 0));

    QStringList chain{QStringLiteral("format=rgba")};
    if (placement.opacity < 0.999)
        chain << QStringLiteral("colorchannelmixer=aa=") + gradeValue(placement.opacity);
    chain << QStringLiteral("scale=%1:-1:flags=lanczos").arg(w);

    return QStringLiteral("[0:v]") + grade + QStringLiteral("[v];[1:v]") + chain.join(QLatin1Char(','))
         + QStringLiteral("[wm];[v][wm]overlay=%1:%2:format=auto,").arg(x).arg(y)
         + outputConversion + QStringLiteral("[vout]");
}

}  // namespace tavrelune
