// How every export reads and writes colour.
//
// Input: the source is read into 16-bit RGB with its own matrix and range,
// as the live preview reads it (sourceMatrix in model/delivery_conversion.h).
// ffmpeg's scaler would read every untagged stream as BT.601, so the chain
// names its matrix explicitly. HDR and BT.2020 sources then pass the delivery table
// (see grading/delivery_table.h), which makes them SDR BT.709.
//
// Output: 8-bit 4:2:0, limited range, BT.709 matrix for a frame the preview
// calls HD and BT.601 (smpte170m) below, and tags that say so. Primaries and
// transfer: BT.709 for converted sources and for untagged HD; untagged SD is
// tagged smpte170m; an SDR source that names its own keeps them (its pixels
// were not moved to another gamut or curve). The parts of a combined export
// all carry BT.709 primaries and transfer and the matrix of the batch's frame
// size, so the joined file's tags hold for every part (the SDR gamuts differ
// by less than anyone sees; only BT.2020 is converted).
//
// Pure functions over value types, any thread. Sizes are pixels; names are
// ffmpeg's (scale's in_color_matrix values, -colorspace values).
#pragma once

#include "grading/delivery_table.h"
#include "model/encode_settings.h"
#include "model/media_info.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

namespace tavrelune::ExportColour {

// Whether the written matrix is BT.709 (else BT.601).
bool writesBt709(int64_t width, int64_t height);

// The source read into RGB (with its matrix and range), made SDR by the
// delivery tables when given (in float, as the preview applies them), in
// 16-bit RGB: the first steps of every export and still.
QStringList readingFilters(const ColorTags& source, int64_t width, int64_t height,
                           const std::optional<DeliveryTable::TableFiles>& deliveryTables);

// The tags (and so the pixels) of an output `width` × `height`; `sharedByParts`
// for the parts of a combined export.
ColorTags outputTags(const ColorTags& source, int64_t width, int64_t height, bool sharedByParts);

// RGB (16-bit) to yuv420p with the matrix of `output`, limited range.
QString outputConversion(const ColorTags& output);
// "-colorspace", "-color_primaries", "-color_trc", "-color_range".
QStringList outputColorArguments(const ColorTags& output);

// The whole video chain: `readingFilters`, `gradeFilters`, the size
// steps, and `outputConversion`, or 16-bit RGB when that is empty (a
// watermark is blended afterwards).
QString videoGraph(const ColorTags& source, int64_t width, int64_t height,
                   const std::optional<DeliveryTable::TableFiles>& deliveryTables, const QStringList& gradeFilters,
                   const std::optional<VideoNormalization>& normalization, const QString& outputConversion);

}  // namespace tavrelune::ExportColour
