// Number-valued command-line options (--exposure 0.5 and the like).
#pragma once

#include "model/grade_values.h"
#include "watermark/watermark_settings.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <optional>
#include <vector>

namespace tavrelune::cli {

// A finite number in the C locale (surrounding spaces allowed), or nothing.
std::optional<double> finiteNumber(const QString& text);

// `Target` is double or std::optional<double>.
template <typename Target>
struct NumberOption {
    QCommandLineOption option;
    Target* target;
    std::optional<GradeRange> range = {};  // none: any finite number
};

// Stores every given option's value in its target. Returns the message for
// the first value that is not a finite number ("--exposure: 'x' is not a
// number") or is outside its range ("--exposure: 5 is outside -3 to 3"),
// or nothing when all were good.
template <typename Target>
std::optional<QString> readNumberOptions(const QCommandLineParser& parser,
                                         const std::vector<NumberOption<Target>>& options)
{
    for (const NumberOption<Target>& number : options) {
        if (!parser.isSet(number.option))
            continue;
        const QString text = parser.value(number.option);
        const std::optional<double> value = finiteNumber(text);
        if (!value)
            return QStringLiteral("--%1: '%2' is not a number").arg(number.option.names().constFirst(), text);
        if (number.range && !number.range->contains(*value))
            return QStringLiteral("--%1: %2 is outside %3")
                .arg(number.option.names().constFirst(), text.trimmed(), number.range->text());
        *number.target = *value;
    }
    return std::nullopt;
}

}  // namespace tavrelune::cli
