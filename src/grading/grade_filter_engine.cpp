#include "grading/grade_filter_engine.h"

#include <cstring>

namespace tavrelune {

GradeFilterEngine::GradeFilterEngine(Kernels kernels)
    : kernels_(kernels == Kernels::fastest ? fastestGradeKernels() : portableGradeKernels())
{
}

void GradeFilterEngine::takeLUT(const std::optional<CubeLUT>& lut)
{
    if (!lut || !lut->isValid()) {
        if (assignedLUT_) {
            assignedLUT_.reset();
            preparedCube_ = {};
            preparedWith_.reset();
            programCurrent_ = false;
        }
        cachedLUTSize_ = -1;
        cachedLUTByteCount_ = -1;
        return;
    }
    if (lut->size == cachedLUTSize_ && lut->byteCount() == cachedLUTByteCount_ && assignedLUT_
        && *assignedLUT_ == *lut)
        return;
    assignedLUT_ = lut;
    cachedLUTSize_ = lut->size;
    cachedLUTByteCount_ = lut->byteCount();
    ++lutAssignments_;
    preparedWith_.reset();
    programCurrent_ = false;
}

void GradeFilterEngine::compile(const GradeValues& grade)
{
    programGrade_ = grade;
    programCurrent_ = true;
    if (assignedLUT_) {
        form_ = Form::cube;
        const ColourMatrix after = afterCubeMatrix(grade);
        // Folding the matrix into the cube costs one pass over its entries,
        // so repeat it only when white balance, contrast or saturation move.
        if (preparedWith_ != after) {
            preparedCube_ = prepareCube(*assignedLUT_, after);
            preparedWith_ = after;
        }
        fillCubeSteps(cube_, grade, assignedLUT_->size);
        cube_.entries = preparedCube_.data();
    } else if (grade.anyStageActs()) {
        form_ = Form::affine;
        affine_ = affineProgram(wholeGradeMatrix(grade));
    } else {
        form_ = Form::identity;
    }
}

void GradeFilterEngine::apply(ConstBgraPixels source, BgraPixels target, const GradeValues& grade,
                              const std::optional<CubeLUT>& lut)
{
    takeLUT(lut);
    if (!programCurrent_ || !(programGrade_ == grade))
        compile(grade);

    const int width = std::min(source.width, target.width);
    const int height = std::min(source.height, target.height);
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* in = source.row(y);
        std::uint8_t* out = target.row(y);
        switch (form_) {
        case Form::identity:
            if (in != out)
                std::memcpy(out, in, static_cast<std::size_t>(width) * 4);
            break;
        case Form::affine:
            kernels_.affine(in, out, width, affine_);
            break;
        case Form::cube:
            kernels_.cube(in, out, width, cube_);
            break;
        }
    }
}

}  // namespace tavrelune
