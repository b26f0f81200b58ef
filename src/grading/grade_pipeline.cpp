#include "grading/grade_pipeline.h"

#include <cmath>

namespace tavrelune::GradePipeline {

CubeCoordinate cubeCoordinate(double value, std::int64_t size)
{
    const double position = clampUnit(value) * static_cast<double>(size - 1);
    const auto lower = std::min(static_cast<std::int64_t>(position), size - 2);
    return {lower, position - static_cast<double>(lower)};
}

Colour lookUp(const CubeLUT& lut, Colour colour)
{
    const std::int64_t n = lut.size;
    const CubeCoordinate r = cubeCoordinate(colour.red, n);
    const CubeCoordinate g = cubeCoordinate(colour.green, n);
    const CubeCoordinate b = cubeCoordinate(colour.blue, n);
    const float* entries = lut.data();
    double result[3];
    for (int channel = 0; channel < 3; ++channel) {
        auto at = [&](std::int64_t dr, std::int64_t dg, std::int64_t db) -> double {
            return entries[((r.lower + dr) + (g.lower + dg) * n + (b.lower + db) * n * n) * 4 + channel];
        };
        auto lerp = [](double from, double to, double weight) { return from + weight * (to - from); };
        const double c00 = lerp(at(0, 0, 0), at(1, 0, 0), r.weight);
        const double c10 = lerp(at(0, 1, 0), at(1, 1, 0), r.weight);
        const double c01 = lerp(at(0, 0, 1), at(1, 0, 1), r.weight);
        const double c11 = lerp(at(0, 1, 1), at(1, 1, 1), r.weight);
        result[channel] = lerp(lerp(c00, c10, g.weight), lerp(c01, c11, g.weight), b.weight);
    }
    return {result[0], result[1], result[2]};
}

Colour apply(Colour c, const GradeValues& grade, const std::optional<CubeLUT>& lut)
{
    if (grade.exposureActs()) {
        const double gain = grade.exposureGain();
        c = {c.red * gain, c.green * gain, c.blue * gain};
    }
    if (lut && lut->isValid())
        c = lookUp(*lut, c);
    if (grade.whiteBalanceActs()) {
        const double k = grade.whiteBalanceShift();
        c.red *= 1 + k;
        c.green *= 1 - grade.tintShift();
        c.blue *= 1 - k;
    }
    if (grade.contrastActs()) {
        const double factor = grade.contrast;
        const double bias = (1 - factor) * 0.5;
        c = {factor * c.red + bias, factor * c.green + bias, factor * c.blue + bias};
    }
    if (grade.saturationActs()) {
        const double s = grade.saturationFactor();
        const double grey = lumaRed * c.red + lumaGreen * c.green + lumaBlue * c.blue;
        c = {grey + s * (c.red - grey), grey + s * (c.green - grey), grey + s * (c.blue - grey)};
    }
    return c;
}

std::uint8_t toByte(double value)
{
    return static_cast<std::uint8_t>(std::floor(clampUnit(value) * 255 + 0.5));
}

void apply(ConstBgraPixels source, BgraPixels target, const GradeValues& grade,
           const std::optional<CubeLUT>& lut)
{
    for (int y = 0; y < source.height; ++y) {
        const std::uint8_t* in = source.row(y);
        std::uint8_t* out = target.row(y);
        for (int x = 0; x < source.width; ++x, in += 4, out += 4) {
            const Colour graded = apply({in[2] / 255.0, in[1] / 255.0, in[0] / 255.0}, grade, lut);
            const std::uint8_t alpha = in[3];
            out[0] = toByte(graded.blue);
            out[1] = toByte(graded.green);
            out[2] = toByte(graded.red);
            out[3] = alpha;
        }
    }
}

}  // namespace tavrelune::GradePipeline
