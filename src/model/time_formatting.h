// Clock-style time text for the user: "1:05", "1:05.3", "1:02:05".
#pragma once

#include <QString>

namespace tavrelune::TimeFormatting {

// Negative and not-a-number times show as zero; times beyond about 30
// million years are shown as that limit.
QString clock(double seconds, bool tenths = false);

}  // namespace tavrelune::TimeFormatting
