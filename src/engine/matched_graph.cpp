#include "engine/matched_graph.h"

#include "engine/ffmpeg_service.h"

namespace tavrelune::MatchedGraph {

namespace {

// The preview's rule for a stream that names no matrix.
bool looksHighDefinition(int64_t width, int64_t height)
{
    return width >= 1280 || height > 576;
}

}  // namespace

QString sourceMatrix(const ColorTags& tags, int64_t width, int64_t height)
{
    const QString& space = tags.space;
    if (space == QLatin1String("bt709"))
        return QStringLiteral("bt709");
    if (space == QLatin1String("smpte170m") || space == QLatin1String("bt470bg"))
        return QStringLiteral("bt601");
    if (space == QLatin1String("bt2020nc") || space == QLatin1String("bt2020c"))
        return QStringLiteral("bt2020");
    if (space == QLatin1String("smpte240m") || space == QLatin1String("fcc"))
        return space;
    return looksHighDefinition(width, height) ? QStringLiteral("bt709") : QStringLiteral("bt601");
}

bool isFullRange(const ColorTags& tags)
{
    return tags.range == QLatin1String("pc");
}

bool writesBt709(int64_t width, int64_t height)
{
    return looksHighDefinition(width, height);
}

QString outputConversion(int64_t outputWidth, int64_t outputHeight)
{
    return QStringLiteral("scale=out_color_matrix=%1:out_range=tv,format=yuv420p")
        .arg(writesBt709(outputWidth, outputHeight) ? QStringLiteral("bt709") : QStringLiteral("bt601"));
}

QStringList outputColorArguments(const ColorTags& source, int64_t outputWidth, int64_t outputHeight)
{
    QStringList arguments{QStringLiteral("-colorspace"),
                          writesBt709(outputWidth, outputHeight) ? QStringLiteral("bt709")
                                                                 : QStringLiteral("smpte170m"),
                          QStringLiteral("-color_range"), QStringLiteral("tv")};
    if (!source.primaries.isEmpty())
        arguments << QStringLiteral("-color_primaries") << source.primaries;
    if (!source.transfer.isEmpty())
        arguments << QStringLiteral("-color_trc") << source.transfer;
    return arguments;
}

QString filterGraph(const std::optional<QString>& cubePath, const ColorTags& source, int64_t width,
                    int64_t height, const std::optional<VideoNormalization>& normalization,
                    const QString& outputConversion)
{
    QStringList filters{
        QStringLiteral("scale=in_color_matrix=%1:in_range=%2")
            .arg(sourceMatrix(source, width, height),
                 isFullRange(source) ? QStringLiteral("pc") : QStringLiteral("tv")),
        QStringLiteral("format=gbrp16le")};
    if (cubePath && !cubePath->isEmpty())
        filters << QStringLiteral("lut3d=file=") + FFmpegService::escapeFilterPath(*cubePath)
                       + QStringLiteral(":interp=tetrahedral");
    // Pinned, so the size steps cannot hand the final conversion YUV that
    // ffmpeg's default matrix has already made.
    filters << FFmpegService::sizeFilters(normalization) << QStringLiteral("format=gbrp16le");
    if (!outputConversion.isEmpty())
        filters << outputConversion;
    return filters.join(QLatin1Char(','));
}

}  // namespace tavrelune::MatchedGraph
