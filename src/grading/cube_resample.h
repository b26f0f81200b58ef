// Trilinear resampling of an RGB cube to another dimension.
//
// Pure function, any thread. Input and output hold 3 floats per entry, red
// index fastest. The first and last samples on each axis fall exactly on the
// source's first and last samples. Arithmetic is 32-bit float in a fixed
// order, so a resampled table is the same on every machine.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tavrelune {

// `rgb` must hold at least from³ × 3 floats; from and to are at least 1.
std::vector<float> resampleCube(std::span<const float> rgb, std::int64_t from, std::int64_t to);

}  // namespace tavrelune
