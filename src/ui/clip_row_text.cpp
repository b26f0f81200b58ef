#include "ui/clip_row_text.h"

#include "model/clip_item.h"

#include <QStringList>
#include <cmath>

namespace tavrelune::ui {

bool carriesGrade(const ClipItem& clip)
{
    return !clip.grade.isNeutral();
}

QString durationText(const ClipItem& clip, TimeStyle style)
{
    if (!style.timecode || !clip.fps || !clip.duration || !(*clip.duration > 0))
        return clip.durationLabel();
    const QString whole = style.text(*clip.duration, clip.fps);
    if (const auto kept = clip.trimmedDuration(); kept && clip.isTrimmed())
        return style.text(*kept, clip.fps) + QStringLiteral(" / ") + whole;
    return whole;
}

QString adjustmentLabel(const ClipItem& clip)
{
    const QChar times(0x00D7);
    QStringList parts;
    if (std::abs(clip.grade.exposure) > 0.01)
        parts << QString::asprintf("%+.1f EV", clip.grade.exposure);
    if (std::abs(clip.grade.contrast - 1) > 0.01)
        parts << QString::asprintf("%.2f", clip.grade.contrast) + times;
    if (std::abs(clip.grade.saturation - 1) > 0.01)
        parts << QString::asprintf("Sat %.2f", clip.grade.saturation) + times;
    if (clip.grade.temperatureActs())
        parts << QString::asprintf("WB %+.0f", clip.grade.temperature);
    if (clip.grade.tintActs())
        parts << QString::asprintf("Tint %+.0f", clip.grade.tint);
    return parts.join(QStringLiteral(" \u00B7 "));
}

}  // namespace tavrelune::ui
