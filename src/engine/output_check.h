// Whether a finished output holds what its export was meant to make.
//
// Pure function over value types, safe on any thread. Durations in seconds,
// sizes in pixels. The caller probes the file and says what it expects.
#pragma once

#include "model/encode_settings.h"
#include "model/media_info.h"

#include <QString>
#include <cstdint>
#include <optional>

namespace tavrelune {

struct ExpectedOutput {
    VideoCodec codec = VideoCodec::hevc;
    int64_t width = 0;      // 0 when the size is not known beforehand: not checked
    int64_t height = 0;
    double duration = 0;    // 0 when the length is not known: not checked
    double fps = 24;        // one frame of this rate is allowed either way
    int audioTracks = 0;
    // Matrix, range, primaries and transfer as ffprobe names them; not
    // checked when absent.
    std::optional<ColorTags> colour;

    bool operator==(const ExpectedOutput&) const = default;
};

// The user's message for the first way `probed` falls short ("Output check
// failed: expected 12.0 s, the file holds 3.4 s."), or nothing when the file
// matches. The length may differ by one frame plus 0.1 s: containers round,
// and AAC adds a few milliseconds of priming.
std::optional<QString> outputMismatch(const ExpectedOutput& expected, const MediaInfo& probed);

}  // namespace tavrelune
