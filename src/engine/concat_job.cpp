#include "engine/concat_job.h"

#include "engine/clip_conversion.h"
#include "engine/export_colour.h"

#include <QDir>
#include <QFileInfo>

namespace tavrelune {

namespace {

QStringList leadingArguments(const QString& listPath)
{
    // "-safe 0": the parts have absolute paths, which the demuxer refuses
    // by default. "-map 0": every audio track, not ffmpeg's pick of one.
    return {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-loglevel"),
            QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-f"),
            QStringLiteral("concat"), QStringLiteral("-safe"), QStringLiteral("0"),
            QStringLiteral("-i"), listPath, QStringLiteral("-map"), QStringLiteral("0")};
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

QString concatListText(const QStringList& inputs)
{
    QString text;
    for (QString path : inputs) {
        path.replace(QLatin1Char('\''), QLatin1String("'\\''"));
        text += QStringLiteral("file '") + path + QStringLiteral("'\n");
    }
    return text;
}

QStringList concatCopyArguments(const QString& listPath, const QString& output)
{
    return leadingArguments(listPath) + QStringList{QStringLiteral("-c"), QStringLiteral("copy")}
         + trailingArguments(output);
}

QStringList concatReencodeArguments(const QString& listPath, const QString& output,
                                    const VideoEncoder& encoder, const EncodeSettings& settings,
                                    int64_t width, int64_t height)
{
    QStringList arguments = leadingArguments(listPath);
    arguments << videoEncodingArguments(
        encoder, settings.codec, bitrateKbps(settings.quality, width, height, settings.codec));
    // The parts' own pixels and tags; said again, as the encoder would not.
    arguments << ExportColour::outputColorArguments(ExportColour::outputTags({}, width, height, true));
    if (settings.removeAudio)
        arguments << QStringLiteral("-an");
    else
        arguments << QStringLiteral("-c:a") << QStringLiteral("aac") << QStringLiteral("-b:a")
                  << QStringLiteral("192k");
    return arguments + trailingArguments(output);
}

}  // namespace tavrelune
