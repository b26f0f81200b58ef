// The four adjustment values of a grade and the rule for when each one acts.
//
// Plain value type. Exposure is in stops (gain 2^exposure), contrast a factor
// around mid-grey 0.5, saturation a factor, temperature a white-balance shift
// where ±250 is the strongest. The thresholds are strict: a value exactly at
// its threshold (or not a number) counts as neutral, and a neutral stage is
// left out rather than applied as an identity.
#pragma once

#include <QString>
#include <algorithm>
#include <cmath>

namespace tavrelune {

struct GradeValues {
    double exposure = 0;
    double contrast = 1;
    double saturation = 1;
    double temperature = 0;

    bool operator==(const GradeValues&) const = default;

    bool exposureActs() const { return std::abs(exposure) > 0.0005; }
    bool whiteBalanceActs() const { return std::abs(temperature) > 0.5; }
    bool contrastActs() const { return std::abs(contrast - 1) > 0.0005; }
    bool saturationActs() const { return std::abs(saturation - 1) > 0.0005; }
    bool anyStageActs() const
    {
        return exposureActs() || whiteBalanceActs() || contrastActs() || saturationActs();
    }

    double exposureGain() const { return std::exp2(exposure); }
    // k in red × (1 + k), blue × (1 − k); only meaningful when the stage acts.
    double whiteBalanceShift() const { return std::clamp(temperature / 250, -1.0, 1.0); }
    // The saturation stage takes its factor as a 32-bit float.
    double saturationFactor() const { return static_cast<float>(saturation); }
};

// The values a clip's grade may take: the inspector's slider ends, and what
// the command line and job files accept.
struct GradeRange {
    double minimum;
    double maximum;

    // Not-a-number is never inside.
    bool contains(double value) const { return value >= minimum && value <= maximum; }
    // "-3 to 3", for messages about a value outside the range.
    QString text() const
    {
        return QStringLiteral("%1 to %2").arg(QString::number(minimum), QString::number(maximum));
    }
};

inline constexpr GradeRange exposureRange{-3, 3};
inline constexpr GradeRange contrastRange{0.5, 2};
inline constexpr GradeRange saturationRange{0, 2};
inline constexpr GradeRange temperatureRange{-100, 100};

// Rec. 709 luminance weights: the grey that saturation mixes each colour with.
inline constexpr double lumaRed = 0.2126;
inline constexpr double lumaGreen = 0.7152;
inline constexpr double lumaBlue = 0.0722;

// Clamps to 0…1; not-a-number becomes 0 so that it can index nothing.
inline double clampUnit(double value)
{
    return value > 0 ? (value < 1 ? value : 1) : 0;
}

}  // namespace tavrelune
