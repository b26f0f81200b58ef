// libFuzzer entry for the `.cube` reader: any byte string must either give a
// well-formed table or one of the reader's own errors, never a crash, a hang
// or undefined behaviour.
#include "grading/cube_lut.h"
#include "grading/cube_resample.h"
#include "grading/lut_parse_error.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const tavrelune::CubeLUT lut = tavrelune::CubeLUT::parse(text);
        if (!lut.isValid())
            std::abort();
        for (std::size_t i = 3; i < lut.entries->size(); i += 4)
            if ((*lut.entries)[i] != 1.0f)
                std::abort();
        // A table of 65 points or more needs megabytes of text, beyond what
        // the fuzzer writes, so drive the resampler with the parsed sizes.
        std::vector<float> rgb;
        for (std::size_t i = 0; i < lut.entries->size(); i += 4)
            rgb.insert(rgb.end(), lut.entries->begin() + i, lut.entries->begin() + i + 3);
        for (const std::int64_t to : {std::int64_t{1}, std::int64_t{2}, lut.size - 1, lut.size + 1}) {
            if (to < 1)
                continue;
            if (static_cast<std::int64_t>(tavrelune::resampleCube(rgb, lut.size, to).size()) != to * to * to * 3)
                std::abort();
        }
    } catch (const tavrelune::LUTParseError&) {
    }
    return 0;
}
