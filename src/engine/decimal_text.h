// Numbers as ffmpeg reads them in arguments and filter graphs.
//
// Pure functions, safe on any thread. QCoreApplication adopts the user's
// locale for the C library on Unix, so printf-style formatting could write a
// decimal comma; these always write ".".
#pragma once

#include <QString>
#include <cstdint>

namespace tavrelune {

// `value` with exactly `decimals` digits after the point, rounded like
// printf("%.*f") in the C locale ("-0.0011", "29.970", "nan").
QString fixedDecimal(double value, int decimals);

// Nearest integer, halves away from zero; saturates at the int64 range and
// gives 0 for NaN, so a degenerate input never becomes undefined behaviour.
int64_t roundedToInteger(double value);

}  // namespace tavrelune
