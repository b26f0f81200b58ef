#include "grading/cube_resample.h"

#include <algorithm>

namespace tavrelune {

namespace {

// Where output index o of an axis falls in the source: lower index, upper
// index and the weight of the upper one.
struct AxisSample {
    std::int64_t lower;
    std::int64_t upper;
    float weight;
};

AxisSample sampleAxis(std::int64_t o, float denominator, float top, std::int64_t sourceSize)
{
    const float position = (static_cast<float>(o) / denominator) * top;
    const auto lower = static_cast<std::int64_t>(position);
    return {lower, std::min(sourceSize - 1, lower + 1), position - static_cast<float>(lower)};
}

}  // namespace

std::vector<float> resampleCube(std::span<const float> rgb, std::int64_t from, std::int64_t to)
{
    std::vector<float> out(static_cast<std::size_t>(to * to * to * 3));
    const float denominator = static_cast<float>(std::max<std::int64_t>(to - 1, 1));
    const float top = static_cast<float>(from - 1);
    const std::int64_t plane = from * from;
    auto at = [&](std::int64_t r, std::int64_t g, std::int64_t b, int channel) {
        return rgb[static_cast<std::size_t>((r + g * from + b * plane) * 3 + channel)];
    };
    // The red axis samples are the same for every row, so work them out once.
    std::vector<AxisSample> axis(static_cast<std::size_t>(to));
    for (std::int64_t o = 0; o < to; ++o)
        axis[static_cast<std::size_t>(o)] = sampleAxis(o, denominator, top, from);

    float* write = out.data();
    for (std::int64_t bo = 0; bo < to; ++bo) {
        const AxisSample& b = axis[static_cast<std::size_t>(bo)];
        for (std::int64_t go = 0; go < to; ++go) {
            const AxisSample& g = axis[static_cast<std::size_t>(go)];
            for (std::int64_t ro = 0; ro < to; ++ro) {
                const AxisSample& r = axis[static_cast<std::size_t>(ro)];
                for (int c = 0; c < 3; ++c) {
                    const float c00 = at(r.lower, g.lower, b.lower, c)
                        + r.weight * (at(r.upper, g.lower, b.lower, c) - at(r.lower, g.lower, b.lower, c));
                    const float c10 = at(r.lower, g.upper, b.lower, c)
                        + r.weight * (at(r.upper, g.upper, b.lower, c) - at(r.lower, g.upper, b.lower, c));
                    const float c01 = at(r.lower, g.lower, b.upper, c)
                        + r.weight * (at(r.upper, g.lower, b.upper, c) - at(r.lower, g.lower, b.upper, c));
                    const float c11 = at(r.lower, g.upper, b.upper, c)
                        + r.weight * (at(r.upper, g.upper, b.upper, c) - at(r.lower, g.upper, b.upper, c));
                    const float face0 = c00 + g.weight * (c10 - c00);
                    const float face1 = c01 + g.weight * (c11 - c01);
                    *write++ = face0 + b.weight * (face1 - face0);
                }
            }
        }
    }
    return out;
}

}  // namespace tavrelune
