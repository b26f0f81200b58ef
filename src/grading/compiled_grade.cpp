#include "grading/compiled_grade.h"

#include "grading/grade_pipeline.h"

#include <algorithm>
#include <limits>

namespace tavrelune {

ColourMatrix ColourMatrix::then(const ColourMatrix& next) const
{
    ColourMatrix product;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = column == 3 ? next.m[row][3] : 0.0;
            for (int k = 0; k < 3; ++k)
                sum += next.m[row][k] * m[k][column];
            product.m[row][column] = sum;
        }
    }
    return product;
}

namespace {

ColourMatrix scaling(double red, double green, double blue, double offset = 0)
{
    ColourMatrix matrix;
    matrix.m[0][0] = red;
    matrix.m[1][1] = green;
    matrix.m[2][2] = blue;
    for (auto& row : matrix.m)
        row[3] = offset;
    return matrix;
}

ColourMatrix saturationMatrix(double s)
{
    const double luma[3] = {lumaRed, lumaGreen, lumaBlue};
    ColourMatrix matrix;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            matrix.m[row][column] = (row == column ? s : 0.0) + (1 - s) * luma[column];
    return matrix;
}

}  // namespace

ColourMatrix afterCubeMatrix(const GradeValues& grade)
{
    ColourMatrix matrix;
    if (grade.whiteBalanceActs()) {
        const double k = grade.whiteBalanceShift();
        matrix = matrix.then(scaling(1 + k, 1 - grade.tintShift(), 1 - k));
    }
    if (grade.contrastActs()) {
        const double c = grade.contrast;
        matrix = matrix.then(scaling(c, c, c, (1 - c) * 0.5));
    }
    if (grade.saturationActs())
        matrix = matrix.then(saturationMatrix(grade.saturationFactor()));
    return matrix;
}

ColourMatrix wholeGradeMatrix(const GradeValues& grade)
{
    ColourMatrix matrix;
    if (grade.exposureActs()) {
        const double gain = grade.exposureGain();
        matrix = scaling(gain, gain, gain);
    }
    return matrix.then(afterCubeMatrix(grade));
}

AffineProgram affineProgram(const ColourMatrix& matrix)
{
    AffineProgram program;
    // Memory order is the reverse of red, green, blue.
    for (int out = 0; out < 3; ++out) {
        for (int in = 0; in < 3; ++in)
            program.matrix[out][in] = static_cast<float>(matrix.m[2 - out][2 - in]);
        program.bias[out] = static_cast<float>(matrix.m[2 - out][3] * 255);
    }
    return program;
}

namespace {

// Floats in one row of prepared entries, and from one green index to the next.
std::size_t rowFloats(std::int64_t size) { return static_cast<std::size_t>(size) * 4; }
std::size_t greenFloats(std::int64_t size) { return 2 * rowFloats(size); }

}  // namespace

std::vector<float> prepareCube(const CubeLUT& lut, const ColourMatrix& after)
{
    const auto n = static_cast<std::size_t>(lut.size);
    const std::size_t row = rowFloats(lut.size);
    const std::size_t green = greenFloats(lut.size);
    std::vector<float> prepared(n * n * green);
    const float* in = lut.data();
    const auto& m = after.m;
    for (std::size_t rowStart = 0; rowStart < prepared.size(); rowStart += green) {
        float* out = &prepared[rowStart];
        for (std::size_t i = 0; i < n; ++i, in += 4, out += 4) {
            const double r = in[0], g = in[1], b = in[2];
            out[0] = static_cast<float>((m[2][0] * r + m[2][1] * g + m[2][2] * b + m[2][3]) * 255);
            out[1] = static_cast<float>((m[1][0] * r + m[1][1] * g + m[1][2] * b + m[1][3]) * 255);
            out[2] = static_cast<float>((m[0][0] * r + m[0][1] * g + m[0][2] * b + m[0][3]) * 255);
            out[3] = 0;
        }
    }
    // Differences in floats, as a kernel blending the two entries would work
    // them out; the last green row's stay 0.
    for (std::size_t rowStart = 0; rowStart < prepared.size(); rowStart += green) {
        if ((rowStart / green) % n == n - 1)
            continue;
        const float* here = &prepared[rowStart];
        const float* next = here + green;
        float* differences = &prepared[rowStart + row];
        for (std::size_t i = 0; i < row; ++i)
            differences[i] = next[i] - here[i];
    }
    return prepared;
}

void fillCubeSteps(CubeProgram& program, const GradeValues& grade, std::int64_t size)
{
    const bool exposed = grade.exposureActs();
    const double gain = grade.exposureGain();
    program.greenStride = static_cast<std::uint32_t>(greenFloats(size));
    program.blueStride = static_cast<std::uint32_t>(greenFloats(size) * size);
    program.greenDifference = static_cast<std::uint32_t>(rowFloats(size));
    program.size = static_cast<std::uint32_t>(size);
    // An endless gain (only a non-finite exposure gives one) stays finite, so
    // that black still maps to 0 and every other value to the top.
    const double scale = (exposed ? gain : 1.0) * static_cast<double>(size - 1) / 255;
    program.positionScale = static_cast<float>(std::min(scale, double(std::numeric_limits<float>::max())));
    const std::uint32_t strides[3] = {4, program.greenStride, program.blueStride};
    std::array<CubeStep, 256>* tables[3] = {&program.red, &program.green, &program.blue};
    for (int v = 0; v < 256; ++v) {
        // The same arithmetic as the reference, so both pick the same cell.
        const double value = exposed ? v / 255.0 * gain : v / 255.0;
        const GradePipeline::CubeCoordinate at = GradePipeline::cubeCoordinate(value, size);
        for (int axis = 0; axis < 3; ++axis)
            (*tables[axis])[v] = {static_cast<std::uint32_t>(at.lower) * strides[axis],
                                  static_cast<float>(at.weight)};
    }
}

}  // namespace tavrelune
