#include "grading/preview_grader.h"

#include "grading/grade_pipeline.h"
#include "grading/lut_parse_error.h"

#include <QtEndian>
#include <cmath>

namespace tavrelune {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "Format_ARGB32 is read as BGRA bytes");

void PreviewGrader::setLUT(const std::optional<QString>& path)
{
    lut_.reset();
    if (!path)
        return;
    try {
        lut_ = CubeLUT::load(*path);
    } catch (const LUTParseError&) {
        // Previews go on without a LUT; nothing is reported.
    }
}

void PreviewGrader::setSourceImage(const QImage& image)
{
    source_ = image.isNull() || image.format() == QImage::Format_ARGB32
        ? image
        : image.convertToFormat(QImage::Format_ARGB32);
}

bool PreviewGrader::isIdentity(const GradeValues& grade)
{
    return grade.isNeutral();
}

std::optional<QImage> PreviewGrader::render(const GradeValues& grade) const
{
    if (source_.isNull())
        return std::nullopt;
    if (isIdentity(grade) && !lut_)
        return std::nullopt;
    if (source_.width() <= 1 || source_.height() <= 1)
        return std::nullopt;
    QImage graded(source_.size(), QImage::Format_ARGB32);
    if (graded.isNull())
        return std::nullopt;
    const ConstBgraPixels in(source_.constBits(), source_.width(), source_.height(),
                             source_.bytesPerLine());
    const BgraPixels out{graded.bits(), graded.width(), graded.height(), graded.bytesPerLine()};
    GradePipeline::apply(in, out, grade, lut_);
    return graded;
}

}  // namespace tavrelune
