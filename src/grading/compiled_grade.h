// A grade reduced to the fewest operations per pixel, for the live engine.
//
// Every stage but the cube lookup is affine, and trilinear interpolation is
// linear in the cube's entries, so:
//   - without a cube the whole grade is one 3×4 matrix;
//   - with a cube, exposure becomes a per-channel input table (the clamped
//     cube coordinate of each 8-bit value) and white balance, contrast and
//     saturation are folded into the cube's entries, leaving one lookup.
// Programs work in 8-bit units and memory channel order (blue, green, red) so
// kernels need no rescaling or shuffling. Plain data; build on one thread,
// then read from any.
#pragma once

#include "grading/cube_lut.h"
#include "model/grade_values.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tavrelune {

// An affine colour transform on 0…1 values, rows and columns red, green,
// blue, with the constant term in column 3.
struct ColourMatrix {
    double m[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

    ColourMatrix then(const ColourMatrix& next) const;  // next × this
    bool operator==(const ColourMatrix&) const = default;
};

// Exposure, white balance, contrast and saturation as one matrix (the grade
// without its cube).
ColourMatrix wholeGradeMatrix(const GradeValues& grade);
// White balance, contrast and saturation: what follows the cube.
ColourMatrix afterCubeMatrix(const GradeValues& grade);

// out[o] = Σ matrix[o][i] × in[i] + bias[o], bytes in and out, channel index
// 0 blue, 1 green, 2 red; the result is clamped to 0…255 and rounded.
struct AffineProgram {
    float matrix[3][3];
    float bias[3];
};
AffineProgram affineProgram(const ColourMatrix& matrix);

// One 8-bit input value's place on a cube axis: float offset of its lower
// entry along that axis, and the weight of the upper entry.
struct CubeStep {
    std::uint32_t offset;
    float weight;
};

struct CubeProgram {
    std::array<CubeStep, 256> red;
    std::array<CubeStep, 256> green;
    std::array<CubeStep, 256> blue;
    // Prepared entries (blue, green, red, 0) in 0…255 units: for each blue,
    // then green index, a row of N entries, red index fastest, followed by a
    // row of their green differences (the entries at the next green index
    // minus these; 0 after the last). Owned by the engine; valid while it
    // keeps them.
    const float* entries = nullptr;
    std::uint32_t greenStride = 0;  // floats from one green index to the next
    std::uint32_t blueStride = 0;
    std::uint32_t greenDifference = 0;  // floats from an entry to its green difference
    // The tables' cells as arithmetic, for kernels that place several pixels
    // at once: position = min(byte × positionScale, N − 1), its lower entry
    // min(⌊position⌋, N − 2). Equal to the tables but for float rounding.
    float positionScale = 0;
    std::uint32_t size = 0;  // N
};

// The cube's entries with `after` applied, scaled, reordered and with their
// green differences, as CubeProgram::entries holds them.
std::vector<float> prepareCube(const CubeLUT& lut, const ColourMatrix& after);

// Fills the three input tables for an N-point cube and the grade's exposure.
void fillCubeSteps(CubeProgram& program, const GradeValues& grade, std::int64_t size);

}  // namespace tavrelune
