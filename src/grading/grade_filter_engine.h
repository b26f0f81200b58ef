// The live form of the preview grade: grades 8-bit BGRA frames with the same
// meaning as GradePipeline (within one 8-bit step per channel), fast enough
// for every displayed frame.
//
// One engine per live view, used from the one thread that draws that view;
// not thread-safe. The engine compiles the grade into a program (see
// compiled_grade.h) only when the grade or the LUT changes, and keeps the
// prepared cube while the same LUT keeps coming: same size, same byte count
// and same entries (a shared entry buffer is recognised without comparing).
// A call without a LUT drops the cube, so the next LUT is always taken in.
#pragma once

#include "grading/bgra_pixels.h"
#include "grading/compiled_grade.h"
#include "grading/cube_lut.h"
#include "grading/grade_kernels.h"
#include "model/grade_values.h"

#include <optional>
#include <vector>

namespace tavrelune {

class GradeFilterEngine {
public:
    enum class Kernels { fastest, portable };

    explicit GradeFilterEngine(Kernels kernels = Kernels::fastest);

    // Grades `source` into `target` (same size; the same buffer or a
    // disjoint one). A neutral grade without a LUT copies the pixels.
    void apply(ConstBgraPixels source, BgraPixels target, const GradeValues& grade,
               const std::optional<CubeLUT>& lut);

    // The LUT last taken in, or −1 when none is held.
    std::int64_t cachedLUTSize() const { return cachedLUTSize_; }
    std::int64_t cachedLUTByteCount() const { return cachedLUTByteCount_; }
    // How many times a LUT's entries were taken in since construction.
    int lutAssignments() const { return lutAssignments_; }

private:
    enum class Form { identity, affine, cube };

    void takeLUT(const std::optional<CubeLUT>& lut);
    void compile(const GradeValues& grade);

    GradeKernels kernels_;
    std::optional<CubeLUT> assignedLUT_;
    std::int64_t cachedLUTSize_ = -1;
    std::int64_t cachedLUTByteCount_ = -1;
    int lutAssignments_ = 0;

    bool programCurrent_ = false;
    GradeValues programGrade_;
    Form form_ = Form::identity;
    AffineProgram affine_{};
    CubeProgram cube_{};
    std::vector<float> preparedCube_;
    std::optional<ColourMatrix> preparedWith_;  // matrix folded into preparedCube_
};

}  // namespace tavrelune
