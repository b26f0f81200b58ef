#include "controller/batch_selection.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <iterator>

namespace tavrelune {

namespace {

QString fileStamp(const QUrl& url)
{
    const QFileInfo file(url.toLocalFile());
    return url.toLocalFile() + QLatin1Char('@') + QString::number(file.lastModified().toMSecsSinceEpoch());
}

bool readable(const ClipItem& clip) { return !clip.readError; }

}  // namespace

QByteArray exportSignature(const ClipItem& clip, const QList<ClipItem>& clips, const BatchInputs& inputs)
{
    const EncodeSettings& s = inputs.settings;
    QStringList fields{fileStamp(clip.url),
                       QString::number(clip.grade.exposure, 'g', 17),
                       QString::number(clip.grade.contrast, 'g', 17),
                       QString::number(clip.grade.saturation, 'g', 17),
                       QString::number(clip.grade.temperature, 'g', 17),
                       QString::number(clip.effectiveInPoint(), 'g', 17),
                       QString::number(clip.effectiveOutPoint(), 'g', 17),
                       inputs.lut.toLocalFile(),
                       QString::number(inputs.lookChoices),
                       caseName(s.codec),
                       caseName(s.quality),
                       QString::number(s.copyAudio),
                       QString::number(s.removeAudio),
                       QString::number(s.matchPreview),
                       inputs.outputFolder};
    if (const WatermarkSettings& mark = inputs.watermark; mark.isEnabled())
        fields << mark.url->toLocalFile() << QString::number(mark.x, 'g', 17) << QString::number(mark.y, 'g', 17)
               << QString::number(mark.widthFraction, 'g', 17) << QString::number(mark.opacity, 'g', 17);
    const qsizetype readableCount = std::count_if(clips.begin(), clips.end(), readable);
    if (s.concatenateClips && readableCount > 1) {
        fields << QStringLiteral("combined");
        for (const ClipItem& other : clips)
            if (readable(other))
                fields << other.id.toString();
    }
    return QCryptographicHash::hash(fields.join(QChar(0x1f)).toUtf8(), QCryptographicHash::Sha256);
}

bool isUpToDate(const ClipItem& clip, const QList<ClipItem>& clips, const BatchInputs& inputs)
{
    return clip.status == ClipStatus::done && clip.outputURL && clip.exportedAs
           && QFileInfo::exists(clip.outputURL->toLocalFile())
           && *clip.exportedAs == exportSignature(clip, clips, inputs);
}

QList<ClipItem> clipsToConvert(const QList<ClipItem>& clips, const BatchInputs& inputs, bool again)
{
    QList<ClipItem> readableClips;
    std::copy_if(clips.begin(), clips.end(), std::back_inserter(readableClips), readable);
    const auto needed = [&](const ClipItem& clip) { return again || !isUpToDate(clip, clips, inputs); };
    if (inputs.settings.concatenateClips && readableClips.size() > 1)
        return std::any_of(readableClips.begin(), readableClips.end(), needed) ? readableClips : QList<ClipItem>{};
    QList<ClipItem> chosen;
    std::copy_if(readableClips.begin(), readableClips.end(), std::back_inserter(chosen), needed);
    return chosen;
}

}  // namespace tavrelune
