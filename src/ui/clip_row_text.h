// Texts of one clip row that are decided by rules rather than copied from
// the clip record.
#pragma once

#include <QString>

namespace tavrelune {
struct ClipItem;
}

namespace tavrelune::ui {

// Whether the row shows an adjustment text at all: any value off neutral by
// at least 0.0005 (temperature: 0.5).
bool carriesGrade(const ClipItem& clip);

// "+0.3 EV · 1.20× · Sat 0.80× · WB +12": each value off neutral by more
// than 0.01 (temperature: 0.5). May be empty for a clip that carriesGrade.
QString adjustmentLabel(const ClipItem& clip);

}  // namespace tavrelune::ui
