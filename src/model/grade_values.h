// The adjustment values of a grade, the rule for when each one acts, and the
// one table that declares every grade control (gradeControls()).
//
// Plain value types. Exposure is in stops (gain 2^exposure), contrast a
// factor around mid-grey 0.5, saturation a factor, temperature a
// white-balance shift (blue ↔ amber) and tint its second axis (green ↔
// magenta), each where ±250 is the strongest. The thresholds are strict: a
// value exactly at its threshold (or not a number) counts as neutral, and a
// neutral stage is left out rather than applied as an identity.
#pragma once

#include <QString>
#include <algorithm>
#include <array>
#include <cmath>

namespace tavrelune {

struct GradeValues {
    double exposure = 0;
    double contrast = 1;
    double saturation = 1;
    double temperature = 0;
    double tint = 0;

    bool operator==(const GradeValues&) const = default;

    bool exposureActs() const { return std::abs(exposure) > 0.0005; }
    bool temperatureActs() const { return std::abs(temperature) > 0.5; }
    bool tintActs() const { return std::abs(tint) > 0.5; }
    bool whiteBalanceActs() const { return temperatureActs() || tintActs(); }
    bool contrastActs() const { return std::abs(contrast - 1) > 0.0005; }
    bool saturationActs() const { return std::abs(saturation - 1) > 0.0005; }
    bool anyStageActs() const
    {
        return exposureActs() || whiteBalanceActs() || contrastActs() || saturationActs();
    }
    bool isNeutral() const { return !anyStageActs(); }

    double exposureGain() const { return std::exp2(exposure); }
    // k in red × (1 + k), blue × (1 − k); 0 while temperature is neutral.
    double whiteBalanceShift() const { return temperatureActs() ? std::clamp(temperature / 250, -1.0, 1.0) : 0.0; }
    // m in green × (1 − m): magenta for m > 0, green below; 0 while neutral.
    double tintShift() const { return tintActs() ? std::clamp(tint / 250, -1.0, 1.0) : 0.0; }
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
inline constexpr GradeRange tintRange{-100, 100};

// One grade control, as every place that shows, takes or stores it names
// it: the inspector's slider, the command line's option, the job file's key.
struct GradeControl {
    double GradeValues::*member;
    const char* label;      // the slider's title
    GradeRange range;
    double neutral;         // the value that changes nothing; a reset's target
    double step;            // one arrow-key press
    const char* unit;       // "%+.2f EV"-style format of the shown value
    const char* option;     // --exposure (without the dashes)
    const char* jobKey;     // clips[i].exposure
};

// In the inspector's order.
inline constexpr std::array<GradeControl, 5> gradeControls{{
    {&GradeValues::exposure, "Exposure", exposureRange, 0, 0.05, "%+.2f EV", "exposure", "exposure"},
    {&GradeValues::contrast, "Contrast", contrastRange, 1, 0.01, "%.2f\u00D7", "contrast", "contrast"},
    {&GradeValues::saturation, "Saturation", saturationRange, 1, 0.01, "%.2f\u00D7", "saturation", "saturation"},
    {&GradeValues::temperature, "White balance", temperatureRange, 0, 1, "%+.0f", "temperature", "temperature"},
    {&GradeValues::tint, "Tint", tintRange, 0, 1, "%+.0f", "tint", "tint"},
}};

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
