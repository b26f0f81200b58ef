// Grades the still frame of a clip that cannot be played live, and holds the
// in-memory LUT of the whole application (the live preview receives it from
// here).
//
// Main thread only; rendering is synchronous and uses the reference
// GradePipeline. Every failure (no frame, an unreadable LUT, a frame too
// small) gives no image, silently: the caller shows the ungraded frame.
// Owned by the controller for the life of the application.
#pragma once

#include "grading/cube_lut.h"
#include "model/grade_values.h"

#include <QImage>
#include <QString>
#include <optional>

namespace tavrelune {

class PreviewGrader {
public:
    // No path: no LUT. A path: the table read from it, or no LUT when it
    // cannot be read or parsed (the reason is dropped).
    void setLUT(const std::optional<QString>& path);
    // An already loaded table, for callers that report load errors.
    void setLUT(std::optional<CubeLUT> lut) { lut_ = std::move(lut); }
    const std::optional<CubeLUT>& lut() const { return lut_; }

    // The still to grade; a null image means none.
    void setSourceImage(const QImage& image);
    const QImage& sourceImage() const { return source_; }

    // The graded still (Format_ARGB32, the source's size), or none when there
    // is no source, when the grade is an identity and there is no LUT, or
    // when the source is not wider and taller than 1 pixel.
    std::optional<QImage> render(const GradeValues& grade) const;

    // True when every value is strictly within its neutral band; not-a-number
    // never is.
    static bool isIdentity(const GradeValues& grade);

private:
    QImage source_;
    std::optional<CubeLUT> lut_;
};

}  // namespace tavrelune
