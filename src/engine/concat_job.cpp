#include "engine/concat_job.h"

#include "engine/clip_conversion.h"
#include "engine/decimal_text.h"
#include "engine/export_colour.h"

#include <QDir>
#include <QFileInfo>

namespace tavrelune {

namespace {

QStringList leadingArguments(const QString& listPath)
{
    // "-safe 0": a part outside the list's folder is named by its absolute
    // path, which the demuxer refuses by default. "-map 0": every audio
    // track, not ffmpeg's pick of one.
    return {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-loglevel"),
            QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-f"),
            QStringLiteral("concat"), QStringLiteral("-safe"), QStringLiteral("0"),
            QStringLiteral("-i"), listPath, QStringLiteral("-map"), QStringLiteral("0")};
}

QStringList audioArguments(const EncodeSettings& settings)
{
    if (settings.removeAudio)
        return {QStringLiteral("-an")};
    return {QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-b:a"), QStringLiteral("192k")};
}

QStringList trailingArguments(const QString& output)
{
    return {QStringLiteral("-movflags"), QStringLiteral("+faststart"), QStringLiteral("-progress"),
            QStringLiteral("pipe:1"), QStringLiteral("-nostats"), output};
}

}  // namespace

QString concatListPath(const QString& partsFolder)
{
    return QDir(partsFolder).filePath(QStringLiteral("tavrelune-concat.txt"));
}

QStringList partDurationArguments(const QString& path)
{
    return {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
            QStringLiteral("v:0"), QStringLiteral("-show_entries"), QStringLiteral("stream=duration"),
            QStringLiteral("-of"), QStringLiteral("default=noprint_wrappers=1:nokey=1"), path};
}

double partDuration(const QString& probeOutput)
{
    bool parsed = false;
    const double seconds = probeOutput.trimmed().section(QLatin1Char('\n'), 0, 0).toDouble(&parsed);
    return parsed && seconds > 0 ? seconds : 0.0;
}

QString concatListText(const QList<ConcatPart>& parts, const QString& listFolder)
{
    QString text;
    for (const ConcatPart& part : parts) {
        const QFileInfo file(part.path);
        QString name = QDir(file.path()) == QDir(listFolder) ? file.fileName() : part.path;
        name.replace(QLatin1Char('\''), QLatin1String("'\\''"));
        text += QStringLiteral("file '") + name + QStringLiteral("'\n");
        if (part.videoDuration > 0)
            text += QStringLiteral("outpoint ") + fixedDecimal(part.videoDuration, 6) + QLatin1Char('\n');
    }
    return text;
}

QStringList concatCopyArguments(const QString& listPath, const QString& output, const EncodeSettings& settings)
{
    return leadingArguments(listPath) + QStringList{QStringLiteral("-c:v"), QStringLiteral("copy")}
         + audioArguments(settings) + trailingArguments(output);
}

QStringList concatReencodeArguments(const QString& listPath, const QString& output,
                                    const VideoEncoder& encoder, const EncodeSettings& settings,
                                    const VideoNormalization& size)
{
    QStringList arguments = leadingArguments(listPath);
    arguments << videoEncodingArguments(
        encoder, settings.codec, bitrateKbps(settings.quality, size.width, size.height, settings.codec, size.fps));
    // The parts' own pixels and tags; said again, as the encoder would not.
    arguments << ExportColour::outputColorArguments(ExportColour::outputTags({}, size.width, size.height, true));
    return arguments + audioArguments(settings) + trailingArguments(output);
}

}  // namespace tavrelune
