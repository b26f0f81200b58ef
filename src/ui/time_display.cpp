#include "ui/time_display.h"

#include "model/time_formatting.h"

namespace tavrelune::ui {

QString TimeStyle::text(double seconds, std::optional<double> fps) const
{
    if (timecode && fps && *fps > 0)
        return TimeFormatting::timecode(seconds, *fps);
    return TimeFormatting::clock(seconds, true);
}

void TimeDisplay::setTimecode(bool on)
{
    if (style_.timecode == on)
        return;
    style_.timecode = on;
    Q_EMIT changed();
}

}  // namespace tavrelune::ui
