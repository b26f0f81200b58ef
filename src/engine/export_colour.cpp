#include "engine/export_colour.h"

#include "engine/ffmpeg_service.h"
#include "model/delivery_conversion.h"

namespace tavrelune::ExportColour {

bool writesBt709(int64_t width, int64_t height)
{
    return looksHighDefinition(width, height);
}

ColorTags outputTags(const ColorTags& source, int64_t width, int64_t height, bool sharedByParts)
{
    const bool hd = writesBt709(width, height);
    const QString standard = hd ? QStringLiteral("bt709") : QStringLiteral("smpte170m");
    ColorTags output{.space = standard, .range = QStringLiteral("tv"), .primaries = standard, .transfer = standard};
    if (sharedByParts || deliveryConversionFor(source) != DeliveryConversion::none) {
        output.primaries = QStringLiteral("bt709");
        output.transfer = QStringLiteral("bt709");
    } else {
        if (!source.primaries.isEmpty())
            output.primaries = source.primaries;
        if (!source.transfer.isEmpty())
            output.transfer = source.transfer;
    }
    return output;
}

QString outputConversion(const ColorTags& output)
{
    return QStringLiteral("scale=out_color_matrix=%1:out_range=tv,format=yuv420p")
        .arg(output.space == QLatin1String("bt709") ? QStringLiteral("bt709") : QStringLiteral("bt601"));
}

QStringList outputColorArguments(const ColorTags& output)
{
    return {QStringLiteral("-colorspace"), output.space,         QStringLiteral("-color_primaries"),
            output.primaries,              QStringLiteral("-color_trc"), output.transfer,
            QStringLiteral("-color_range"), output.range};
}

QStringList readingFilters(const ColorTags& source, int64_t width, int64_t height,
                           const std::optional<DeliveryTable::TableFiles>& deliveryTables)
{
    QStringList filters;
    if (!deliveryTables)
        filters << QStringLiteral("scale=") + scalerReadOptions(source, width, height);
    else
        filters << QStringLiteral("zscale=") + zscaleReadOptions(source, width, height)
                << QStringLiteral("format=gbrpf32le")
                << QStringLiteral("lut3d=file=") + FFmpegService::escapeFilterPath(deliveryTables->light)
                       + QStringLiteral(":interp=trilinear")
                << QStringLiteral("lut1d=file=") + FFmpegService::escapeFilterPath(deliveryTables->encoding)
                       + QStringLiteral(":interp=linear");
    filters << QStringLiteral("format=gbrp16le");
    return filters;
}

QString videoGraph(const ColorTags& source, int64_t width, int64_t height,
                   const std::optional<DeliveryTable::TableFiles>& deliveryTables, const QStringList& gradeFilters,
                   const std::optional<VideoNormalization>& normalization, const QString& outputConversion)
{
    QStringList filters = readingFilters(source, width, height, deliveryTables);
    filters << gradeFilters;
    // Pinned, so the size steps cannot hand the final conversion YUV that
    // ffmpeg's default matrix has already made.
    filters << FFmpegService::sizeFilters(normalization, width, height) << QStringLiteral("format=gbrp16le");
    if (!outputConversion.isEmpty())
        filters << outputConversion;
    return filters.join(QLatin1Char(','));
}

}  // namespace tavrelune::ExportColour
