#include "model/time_formatting.h"

#include <cmath>
#include <cstdint>

namespace tavrelune::TimeFormatting {

namespace {
constexpr double largestShownSeconds = 1e15;
}

QString clock(double seconds, bool tenths)
{
    double s = seconds >= 0 ? seconds : 0.0;  // NaN fails the comparison too
    s = std::min(s, largestShownSeconds);
    if (!tenths) {
        const auto n = static_cast<int64_t>(std::round(s));
        if (n < 3600)
            return QString::asprintf("%lld:%02lld", static_cast<long long>(n / 60),
                                     static_cast<long long>(n % 60));
        return QString::asprintf("%lld:%02lld:%02lld", static_cast<long long>(n / 3600),
                                 static_cast<long long>((n % 3600) / 60),
                                 static_cast<long long>(n % 60));
    }
    const auto t = static_cast<int64_t>(std::round(s * 10));
    if (t < 36000)
        return QString::asprintf("%lld:%02lld.%lld", static_cast<long long>((t / 600) % 60),
                                 static_cast<long long>((t / 10) % 60),
                                 static_cast<long long>(t % 10));
    return QString::asprintf("%lld:%02lld:%02lld.%lld", static_cast<long long>(t / 36000),
                             static_cast<long long>((t / 600) % 60),
                             static_cast<long long>((t / 10) % 60),
                             static_cast<long long>(t % 10));
}

}  // namespace tavrelune::TimeFormatting
