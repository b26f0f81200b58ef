// The preview grade's meaning, written stage by stage: the reference that
// the still grader uses and that the live engine is measured against.
//
// Stages, in order, each left out when neutral (see GradeValues):
//   1. exposure: every channel × 2^exposure;
//   2. LUT: trilinear lookup in the cube, inputs clamped to 0…1;
//   3. white balance: red × (1 + k), green × (1 − m), blue × (1 − k),
//      k = temperature / 250 and m = tint / 250, each limited to ±1;
//   4. contrast: c × value + (1 − c) × 0.5 on every channel;
//   5. saturation: Y + s × (value − Y), Y the Rec. 709 luminance.
// Arithmetic is double precision with no clamping between stages; the one
// clamp to 0…1 happens when 8-bit pixels are written. Alpha is untouched.
// Stateless; any thread.
#pragma once

#include "grading/bgra_pixels.h"
#include "grading/cube_lut.h"
#include "model/grade_values.h"

#include <cstdint>
#include <optional>

namespace tavrelune::GradePipeline {

struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

// Where a value falls on one axis of an N-point cube: the lower of the two
// entries to blend and the weight of the upper one. The lower index is at
// most N − 2, so the upper entry always exists (a weight of 1 at the top).
struct CubeCoordinate {
    std::int64_t lower;
    double weight;
};
CubeCoordinate cubeCoordinate(double value, std::int64_t size);

// Trilinear lookup of a colour (clamped to 0…1 per channel).
Colour lookUp(const CubeLUT& lut, Colour colour);

// One colour through every stage; the result is not clamped.
Colour apply(Colour colour, const GradeValues& grade, const std::optional<CubeLUT>& lut);

// 0…1 to a byte: clamped, rounded to nearest.
std::uint8_t toByte(double value);

// Grades `source` into `target`, which has the same size and may be the same
// buffer.
void apply(ConstBgraPixels source, BgraPixels target, const GradeValues& grade,
           const std::optional<CubeLUT>& lut);

}  // namespace tavrelune::GradePipeline
