#include "ui/clip_row_text.h"

#include "model/clip_item.h"

#include <QStringList>
#include <cmath>

namespace tavrelune::ui {

bool carriesGrade(const ClipItem& clip)
{
    return std::abs(clip.exposure) >= 0.0005 || std::abs(clip.contrast - 1) >= 0.0005
           || std::abs(clip.saturation - 1) >= 0.0005 || std::abs(clip.temperature) >= 0.5;
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
    if (std::abs(clip.exposure) > 0.01)
        parts << QString::asprintf("%+.1f EV", clip.exposure);
    if (std::abs(clip.contrast - 1) > 0.01)
        parts << QString::asprintf("%.2f", clip.contrast) + times;
    if (std::abs(clip.saturation - 1) > 0.01)
        parts << QString::asprintf("Sat %.2f", clip.saturation) + times;
    if (std::abs(clip.temperature) > 0.5)
        parts << QString::asprintf("WB %+.0f", clip.temperature);
    return parts.join(QStringLiteral(" \u00B7 "));
}

}  // namespace tavrelune::ui
