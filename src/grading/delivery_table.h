// The conversion of a source's own RGB code values to SDR BT.709 (see
// model/delivery_conversion.h): the exact formulas, and the tables that the
// live preview and the export both apply.
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
// outside BT.709 clip at 0, per channel. The result is encoded for a
// BT.1886 display (gamma 2.4), the curve SDR video is watched with.
//
// An SDR BT.2020 source is decoded with gamma 2.4, moved to BT.709
// primaries, clipped to 0…1 and encoded again.
//
// It is applied as two tables, by ffmpeg on 32-bit float RGB in both the
// preview (in mpv's filter) and the export: a 3D table (lut3d, trilinear)
// from code values to linear light, signed, so that light outside the gamut
// stays smooth across the table's cells; then a fine 1D table (lut1d) that
// clips and encodes for the display. One table over the encoded result
// would lift the weakest channel of every saturated colour, since gamma 2.4
// rises without limit from 0.
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
// Points per axis of the 3D table, and of the 1D encoding table.
inline constexpr int tableSize = 64;
inline constexpr int encodingSize = 16384;

// The exact conversion of one colour of code values (clamped to 0…1 first).
GradePipeline::Colour convert(DeliveryConversion conversion, GradePipeline::Colour code);

// Linear light relative to SDR white through the shoulder: unchanged up
// to `shoulderStart`, at most 1.
double shoulder(double relative);

// Linear light in BT.709 primaries relative to SDR white, before clipping:
// negative outside the gamut, bent by the shoulder on both sides (so at
// most 1 either way).
GradePipeline::Colour light(DeliveryConversion conversion, GradePipeline::Colour code);
// Gamma 2.4 encoding of linear light, clipped to 0…1 first.
double encodeForDisplay(double linear);

// `light` sampled at `size` points per axis over the code values; an empty
// (invalid) table for DeliveryConversion::none.
CubeLUT table(DeliveryConversion conversion, int size = tableSize);
// `.cube` text of the 1D encoding table.
QByteArray encodingText(int size = encodingSize);

struct TableFiles {
    QString light;     // "delivery-<name>.cube": the 3D table
    QString encoding;  // "delivery-encoding.cube": the 1D table, shared
    bool operator==(const TableFiles&) const = default;
};
// Where writeTables puts the tables of `conversion` in `folder`.
TableFiles tableFiles(const QString& folder, DeliveryConversion conversion);
// Writes both tables into `folder` (each unless there already) and returns
// their paths. Throws PlatformError when a file cannot be written.
TableFiles writeTables(const QString& folder, DeliveryConversion conversion);

}  // namespace tavrelune::DeliveryTable
