// Texts of one clip row that are decided by rules rather than copied from
// the clip record.
#pragma once

#include "ui/time_display.h"

#include <QString>

namespace tavrelune {
struct ClipItem;
}

namespace tavrelune::ui {

// Whether the row shows an adjustment text at all: the grade is not neutral.
bool carriesGrade(const ClipItem& clip);

// "+0.3 EV · 1.20× · Sat 0.80× · WB +12 · Tint -8": each value off neutral
// by more than 0.01 (temperature and tint: acting). May be empty for a clip that carriesGrade.
QString adjustmentLabel(const ClipItem& clip);

// The row's length: "0:04", or "0:12 / 0:20" for a trimmed clip (its kept
// length of the whole); as timecode when the window shows timecode.
QString durationText(const ClipItem& clip, TimeStyle style);

}  // namespace tavrelune::ui
