#include "grading/grade_kernels.h"

namespace tavrelune {

namespace {

// 0…255 to a byte, rounding half up; not-a-number gives 0.
inline std::uint8_t toByte(float value)
{
    const float clamped = value > 0 ? (value < 255 ? value : 255) : 0;
    return static_cast<std::uint8_t>(clamped + 0.5f);
}

}  // namespace

void affineRowPortable(const std::uint8_t* in, std::uint8_t* out, int count, const AffineProgram& program)
{
    const auto& m = program.matrix;
    for (int i = 0; i < count; ++i, in += 4, out += 4) {
        const float b = in[0], g = in[1], r = in[2];
        const std::uint8_t alpha = in[3];
        const float blue = m[0][0] * b + m[0][1] * g + m[0][2] * r + program.bias[0];
        const float green = m[1][0] * b + m[1][1] * g + m[1][2] * r + program.bias[1];
        const float red = m[2][0] * b + m[2][1] * g + m[2][2] * r + program.bias[2];
        out[0] = toByte(blue);
        out[1] = toByte(green);
        out[2] = toByte(red);
        out[3] = alpha;
    }
}

void cubeRowPortable(const std::uint8_t* in, std::uint8_t* out, int count, const CubeProgram& program)
{
    const std::uint32_t gs = program.greenStride;
    const std::uint32_t bs = program.blueStride;
    for (int i = 0; i < count; ++i, in += 4, out += 4) {
        const CubeStep& r = program.red[in[2]];
        const CubeStep& g = program.green[in[1]];
        const CubeStep& b = program.blue[in[0]];
        const std::uint8_t alpha = in[3];
        const float* base = program.entries + r.offset + g.offset + b.offset;
        std::uint8_t result[3];
        for (int c = 0; c < 3; ++c) {
            // Along green, then blue, then red: the vector kernel's order,
            // where red's two samples share one register.
            const float low0 = base[c] + g.weight * (base[gs + c] - base[c]);
            const float low1 = base[bs + c] + g.weight * (base[gs + bs + c] - base[bs + c]);
            const float high0 = base[4 + c] + g.weight * (base[gs + 4 + c] - base[4 + c]);
            const float high1 = base[bs + 4 + c] + g.weight * (base[gs + bs + 4 + c] - base[bs + 4 + c]);
            const float low = low0 + b.weight * (low1 - low0);
            const float high = high0 + b.weight * (high1 - high0);
            result[c] = toByte(low + r.weight * (high - low));
        }
        out[0] = result[0];
        out[1] = result[1];
        out[2] = result[2];
        out[3] = alpha;
    }
}

GradeKernels portableGradeKernels()
{
    return {affineRowPortable, cubeRowPortable};
}

GradeKernels fastestGradeKernels()
{
#if defined(__x86_64__) && defined(__GNUC__)
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        return {affineRowAvx2, cubeRowAvx2};
#endif
    return portableGradeKernels();
}

}  // namespace tavrelune
