#include "engine/decimal_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace tavrelune {

QString fixedDecimal(double value, int decimals)
{
    // Large enough for any double in fixed notation (up to 309 integer
    // digits) plus the requested fraction.
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                      std::chars_format::fixed, decimals);
    if (result.ec != std::errc())
        return QStringLiteral("0");
    return QString::fromLatin1(buffer, result.ptr - buffer);
}

int64_t roundedToInteger(double value)
{
    if (std::isnan(value))
        return 0;
    const double rounded = std::round(value);
    if (rounded >= 9.2e18)
        return std::numeric_limits<int64_t>::max();
    if (rounded <= -9.2e18)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(rounded);
}

}  // namespace tavrelune
