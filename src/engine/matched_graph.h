// The export chain of "Match preview colours": the source read into 16-bit
// RGB with the matrix and range the live preview reads it with, one baked
// look-up table for the whole grade, the usual size steps, and a tagged
// conversion back to YUV.
//
// The preview (libmpv) reads a stream's own matrix and range tags; an
// untagged stream is BT.709 when at least 1280 wide or more than 576 high,
// else BT.601, and limited range. ffmpeg's scaler would read every untagged
// stream as BT.601, so the matched chain names both sides explicitly and the
// output carries tags, so players read the file back the same way.
//
// Pure functions over value types, any thread. Sizes are pixels; names are
// ffmpeg's (scale's in_color_matrix values, -colorspace values).
#pragma once

#include "model/encode_settings.h"
#include "model/media_info.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

namespace tavrelune::MatchedGraph {

// The scaler's matrix name for reading the source: "bt709", "bt601",
// "bt2020", "smpte240m" or "fcc".
QString sourceMatrix(const ColorTags& tags, int64_t width, int64_t height);
bool isFullRange(const ColorTags& tags);
// The matrix the export writes: BT.709 for a frame the preview would call
// HD, else BT.601.
bool writesBt709(int64_t width, int64_t height);

// RGB (16-bit) to yuv420p with the written matrix, limited range.
QString outputConversion(int64_t outputWidth, int64_t outputHeight);
// "-colorspace", "-color_range", and the source's primaries and transfer
// when it names them (else players guess them from the size, as the
// preview did for the source).
QStringList outputColorArguments(const ColorTags& source, int64_t outputWidth, int64_t outputHeight);

// The whole video chain, ending with `outputConversion` (see above), or in
// 16-bit RGB when that is empty (a watermark is blended afterwards).
QString filterGraph(const std::optional<QString>& cubePath, const ColorTags& source, int64_t width,
                    int64_t height, const std::optional<VideoNormalization>& normalization,
                    const QString& outputConversion);

}  // namespace tavrelune::MatchedGraph
