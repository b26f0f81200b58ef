#include "cli/number_options.h"

#include <QLocale>
#include <cmath>

namespace tavrelune::cli {

std::optional<double> finiteNumber(const QString& text)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

}  // namespace tavrelune::cli
