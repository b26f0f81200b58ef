// How much a batch will write, forecast before it starts: each output from
// the preset's video bitrate and the audio it will carry, times its length.
//
// Pure functions over value types, safe on any thread. Sizes are bytes,
// bitrates kilobits per second, lengths seconds.
#pragma once

#include "engine/clip_conversion.h"
#include "model/clip_item.h"

#include <QList>
#include <QString>
#include <cstdint>
#include <optional>

namespace tavrelune {

// Audio that is re-encoded (always AAC at this rate), and copied audio
// whose own bitrate the probe did not learn.
inline constexpr int64_t forecastAudioKbps = 192;
// A combined export's parts keep their sound uncompressed: 48 kHz, 16-bit
// stereo per track.
inline constexpr int64_t partAudioKbps = 1536;

struct SizeForecast {
    QList<int64_t> outputs;  // each file the batch delivers, in order
    int64_t parts = 0;       // the parts of a combined export (temporary)

    int64_t outputBytes() const;
};

// Audio bitrate of one clip's export, for all its tracks: none without
// audio, the probed rate (bits per second) when the source is copied and the
// rate is known, the uncompressed rate for a part, else the re-encoding rate.
int64_t forecastAudioBitrate(const ClipConversion& job, std::optional<int64_t> probedBitsPerSecond);

// Bytes of one clip's export.
int64_t forecastBytes(const ClipConversion& job, std::optional<int64_t> probedAudioBitsPerSecond);

// The whole batch as it would start now. Combined: one output holding the
// parts' pictures (they are joined by copying) and their sound as AAC, and
// the parts beside it.
SizeForecast forecastBatch(const QList<ClipItem>& clips, const EncodeSettings& settings);

// "1.4 GB", "820 MB", "2.1 MB", "12 kB" (decimal units, as file managers
// show them).
QString byteCountText(int64_t bytes);

// "About 1.4 GB in 3 files"; empty when there is no file to forecast.
QString forecastSummary(const SizeForecast& forecast);

}  // namespace tavrelune
