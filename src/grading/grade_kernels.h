// Pixel loops that run compiled grade programs over one row of BGRA pixels.
//
// Each kernel reads `count` pixels at `in` and writes them at `out`, which
// may be the same address (in place) or a buffer that does not overlap it.
// Single-threaded; callers may hand different rows to different threads.
// The portable kernels are plain C++ and are the reference for the
// vectorised ones, which are only used when the processor has them.
#pragma once

#include "grading/compiled_grade.h"

#include <cstdint>

namespace tavrelune {

struct GradeKernels {
    void (*affine)(const std::uint8_t* in, std::uint8_t* out, int count, const AffineProgram& program);
    void (*cube)(const std::uint8_t* in, std::uint8_t* out, int count, const CubeProgram& program);
};

GradeKernels portableGradeKernels();
// AVX2 with FMA when the processor has both, else the portable kernels.
GradeKernels fastestGradeKernels();

// The vectorised kernels; call only after checking the processor.
void affineRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count, const AffineProgram& program);
void cubeRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count, const CubeProgram& program);

// Portable kernels, also used by the vectorised ones for a row's last pixels.
void affineRowPortable(const std::uint8_t* in, std::uint8_t* out, int count, const AffineProgram& program);
void cubeRowPortable(const std::uint8_t* in, std::uint8_t* out, int count, const CubeProgram& program);

}  // namespace tavrelune
