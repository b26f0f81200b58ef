// The conversion of a source's own RGB code values to SDR BT.709 (see
// model/delivery_conversion.h): the exact formulas, and the 3D table that
// the live preview and the export both apply.
//
// HDR is display-referred, as BT.2100 defines it:
//   - PQ code values give absolute light (ST 2084); SDR white is 203 cd/m².
//   - HLG code values give scene light (inverse OETF); each channel goes
//     through the system gamma of a nominal 1000 cd/m² display (1.2), where
//     75 % HLG is 203 cd/m² (the scene-light conversion: per channel, so
//     saturated colours keep their saturation).
// Light relative to SDR white then goes from BT.2020 to BT.709 primaries.
// Everything up to `shoulderStart` of SDR white is kept as it is; above it a
// soft shoulder compresses highlights up to `nominalPeak` (1000 cd/m²) into
// what is left below white, per channel; brighter light clips. Colours
// outside BT.709 clip at 0. The result is encoded for a BT.1886 display
// (gamma 2.4), the curve SDR video is watched with.
//
// An SDR BT.2020 source is decoded with gamma 2.4, moved to BT.709
// primaries, clipped to 0…1 and encoded again.
//
// The preview (in mpv's filter) and the export (in ffmpeg's chain) both
// apply the table with ffmpeg's lut3d (trilinear) on 16-bit RGB. Gamma 2.4
// rises without limit at black, so the table errs most in the cells next to
// a channel's zero (saturated colours whose weakest channel is nearly black).
//
// Units: code values and results are 0…1. Pure functions, any thread, except
// `writeTables`, which touches only the files it names.
#pragma once

#include "grading/cube_lut.h"
#include "grading/grade_pipeline.h"
#include "model/delivery_conversion.h"

namespace tavrelune::DeliveryTable {

inline constexpr double sdrWhiteNits = 203;
inline constexpr double nominalPeakNits = 1000;
// Relative to SDR white: below this light passes unchanged.
inline constexpr double shoulderStart = 0.8;
// Points per axis of the table.
inline constexpr int tableSize = 64;

// The exact conversion of one colour of code values (clamped to 0…1 first).
GradePipeline::Colour convert(DeliveryConversion conversion, GradePipeline::Colour code);

// Linear light relative to SDR white, after the shoulder (0…1).
double shoulder(double relative);

// Linear light in BT.709 primaries (0…1, after the shoulder): the
// conversion without the display encoding.
GradePipeline::Colour light(DeliveryConversion conversion, GradePipeline::Colour code);
// Gamma 2.4 encoding of linear light, clamped to 0…1.
double encodeForDisplay(double linear);

// `convert` sampled at `size` points per axis over the code values; an
// empty (invalid) table for DeliveryConversion::none.
CubeLUT table(DeliveryConversion conversion, int size = tableSize);

// Writes the table of `conversion` into `folder` as "delivery-<name>.cube"
// (unless there already) and returns its path. Throws PlatformError when
// the file cannot be written.
QString writeTable(const QString& folder, DeliveryConversion conversion);

}  // namespace tavrelune::DeliveryTable
