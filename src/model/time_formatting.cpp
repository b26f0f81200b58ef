#include "model/time_formatting.h"

#include <algorithm>
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

QString timecode(double seconds, double fps)
{
    if (!(fps > 0) || !std::isfinite(fps))
        return clock(seconds, true);
    const double s = std::min(seconds >= 0 ? seconds : 0.0, largestShownSeconds / 1000);
    // The frame showing: a time a hair before a frame's start still shows it.
    auto frame = static_cast<int64_t>(std::floor(s * fps + 1e-6));
    const auto base = std::max<int64_t>(1, std::llround(fps));
    const bool dropFrame = std::abs(fps * 1.001 - double(base)) < 0.01 && base % 30 == 0;
    if (dropFrame) {
        // Labels ;00 and ;01 (;00–;03 at 59.94) are skipped at every minute
        // except each tenth, so the label keeps to the clock.
        const int64_t dropped = base / 15;
        const int64_t perTenMinutes = base * 600 - dropped * 9;
        const int64_t perMinute = base * 60 - dropped;
        const int64_t tens = frame / perTenMinutes;
        const int64_t rest = frame % perTenMinutes;
        frame += dropped * 9 * tens + (rest > dropped ? dropped * ((rest - dropped) / perMinute) : 0);
    }
    const int64_t totalSeconds = frame / base;
    return QString::asprintf("%02lld:%02lld:%02lld%c%02lld", static_cast<long long>(totalSeconds / 3600),
                             static_cast<long long>((totalSeconds / 60) % 60),
                             static_cast<long long>(totalSeconds % 60), dropFrame ? ';' : ':',
                             static_cast<long long>(frame % base));
}

}  // namespace tavrelune::TimeFormatting

namespace tavrelune::TimeFormatting {

QString timeLeft(double elapsedSeconds, double fraction)
{
    if (!(fraction > 0) || fraction >= 1 || !(elapsedSeconds >= 0) || !std::isfinite(elapsedSeconds))
        return QString();
    if (fraction < 0.05 && elapsedSeconds < 3)
        return QString();
    // Ten thousand hours is as far as a guess is worth showing.
    const double remaining = std::min(elapsedSeconds * (1 - fraction) / fraction, 3.6e7);
    const auto seconds = static_cast<int64_t>(std::ceil(remaining / 5) * 5);
    if (seconds < 60)
        return QStringLiteral("about %1 s left").arg(std::max<int64_t>(seconds, 5));
    const auto minutes = std::max<int64_t>(static_cast<int64_t>(std::round(remaining / 60)), 1);
    if (minutes < 60)
        return QStringLiteral("about %1 min left").arg(minutes);
    if (minutes % 60 == 0)
        return QStringLiteral("about %1 h left").arg(minutes / 60);
    return QStringLiteral("about %1 h %2 min left").arg(minutes / 60).arg(minutes % 60);
}

}  // namespace tavrelune::TimeFormatting
