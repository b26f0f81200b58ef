// Frame extraction: its arguments, and FFmpegService::extractFrame.
#include "engine/frame_extraction.h"

#include "engine/decimal_text.h"
#include "engine/export_colour.h"
#include "engine/ffmpeg_service.h"

#include <QFile>
#include <QFileInfo>

namespace tavrelune {

QStringList frameExtractionArguments(const QString& from, double at, const QString& output,
                                     int64_t width, const StillColour& colour)
{
    const double seek = at > 0 ? at : 0;  // also maps NaN to 0
    QStringList filters =
        ExportColour::readingFilters(colour.tags, colour.width, colour.height, colour.deliveryTables);
    filters << QStringLiteral("scale=%1:-2:flags=bicubic,format=rgb24").arg(width);
    return {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-loglevel"),
            QStringLiteral("error"), QStringLiteral("-y"),
            QStringLiteral("-ss"), fixedDecimal(seek, 3), QStringLiteral("-i"), from,
            QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-vf"),
            filters.join(QLatin1Char(',')),
            QStringLiteral("-pix_fmt"), QStringLiteral("rgb24"),
            // One image file, not a numbered sequence.
            QStringLiteral("-update"), QStringLiteral("1"), output};
}

QCoro::Task<void> FFmpegService::extractFrame(QString from, double at, QString output, int64_t width,
                                              std::stop_token stop, StillColour colour)
{
    // A stale image would pass the existence check below after a failure.
    QFile::remove(output);
    co_await run(binaryPath(QStringLiteral("ffmpeg")), frameExtractionArguments(from, at, output, width, colour),
                 false, {}, stop);
    if (!QFileInfo::exists(output))
        throw FFmpegError::conversionFailed(QStringLiteral("Could not extract a preview frame."));
}

}  // namespace tavrelune
