// A 3D colour look-up table read from a `.cube` file, as the previews use it.
//
// Value type, copied freely: copies share one immutable entry buffer, so a
// copy costs a reference count and may cross threads. Entries are RGBA 32-bit
// floats with alpha 1.0, red index fastest: entry (r, g, b) starts at float
// 4 × (r + g·N + b·N²). Output colours are kept exactly as the file gives them
// (no clamping, scaling or domain mapping). N is 2 to 64; a larger table is
// resampled to 64 once, when it is read, so no frame pays for it.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace tavrelune {

struct CubeLUT {
    static constexpr std::int64_t maximumSize = 64;

    // Cube dimension N.
    std::int64_t size = 0;
    // N³ × 4 floats (red, green, blue, alpha per entry).
    std::shared_ptr<const std::vector<float>> entries;

    // Reads and parses a `.cube` file. Throws LUTParseError: `unreadable`
    // when the file cannot be read or is not UTF-8, `missingSize` or
    // `incomplete` for its content.
    static CubeLUT load(const QString& path);

    // Parses `.cube` text given as raw bytes (validated as UTF-8 here).
    // Throws LUTParseError as `load` does.
    static CubeLUT parse(std::string_view text);

    // N³ × 16: the size of the RGBA block in bytes.
    std::int64_t byteCount() const { return size * size * size * 16; }
    const float* data() const { return entries ? entries->data() : nullptr; }

    // Size 2 to 64 with N³ × 4 entries, as `load` always gives; the grade
    // ignores a table built otherwise.
    bool isValid() const
    {
        return size >= 2 && size <= maximumSize && entries
            && static_cast<std::int64_t>(entries->size()) == size * size * size * 4;
    }

    // Same dimension and the same entries; cheap when both share a buffer.
    bool operator==(const CubeLUT& other) const;
};

}  // namespace tavrelune
