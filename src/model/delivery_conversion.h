// Which colour conversion brings a source's pixels to the SDR BT.709 picture
// that the preview shows and every export delivers.
//
// HDR transfers (PQ, HLG) and the BT.2020 gamut cannot be shown or delivered
// as they are: their code values are mapped to SDR BT.709 before the grade,
// so the grade and the LUT always work on the same kind of picture. Every
// other source is delivered with its own gamut and curve, untouched.
//
// Pure functions over value types; any thread.
#pragma once

#include "model/media_info.h"

#include <QString>
#include <cstdint>

namespace tavrelune {

enum class DeliveryConversion {
    none,       // SDR with a BT.709-like gamut, or untagged
    hlg,        // HLG (arib-std-b67): HDR to SDR
    pq,         // PQ (smpte2084): HDR to SDR
    wideGamut,  // SDR in the BT.2020 gamut: gamut to BT.709
};

DeliveryConversion deliveryConversionFor(const ColorTags& tags);

// What a clip row and the inspector say about it: "HDR (HLG) → SDR",
// "HDR (PQ) → SDR", "BT.2020 → BT.709"; empty when nothing is converted.
QString deliveryConversionLabel(DeliveryConversion conversion);

// How a source's YUV is read into RGB, by the preview and every export:
// scale's in_color_matrix name ("bt709", "bt601", "bt2020", "smpte240m",
// "fcc") from the stream's matrix tag; an untagged stream is BT.709 when at
// least 1280 wide or more than 576 high, else BT.601 (libmpv's rule), and
// limited range unless tagged full ("pc").
QString sourceMatrix(const ColorTags& tags, int64_t width, int64_t height);
bool isFullRange(const ColorTags& tags);
// Both as options of ffmpeg's scale filter: "in_color_matrix=…:in_range=…".
QString scalerReadOptions(const ColorTags& tags, int64_t width, int64_t height);
// Both as options of ffmpeg's zscale filter, reading into full-range RGB
// ("min=…:rin=…:m=gbr:r=full"). zimg converts 10-bit YUV to float RGB
// exactly; the scaler's fixed-point conversion leaves errors that an HDR
// conversion magnifies in the weakest channel of saturated colours.
QString zscaleReadOptions(const ColorTags& tags, int64_t width, int64_t height);
// The rule for a stream that names no matrix: BT.709 for HD.
bool looksHighDefinition(int64_t width, int64_t height);

// A short name for files and hashes: "hlg", "pq", "bt2020"; empty for none.
QString deliveryConversionName(DeliveryConversion conversion);

}  // namespace tavrelune
