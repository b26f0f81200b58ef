// The whole preview grade (exposure, LUT, white balance, contrast,
// saturation) sampled into one 3D look-up table, so an export can apply
// exactly what the preview shows with a single lut3d filter.
//
// Entries are the reference GradePipeline's own results at the grid points,
// unclamped (the export's lut3d clamps once after interpolating, as the
// preview clamps once after grading). Text is `.cube` with LUT_3D_SIZE and
// red fastest. File names come from a hash of the grade values and the
// table's entries, so equal grades share one file.
//
// Pure functions, any thread, except `writeBakedCube`, which touches only the
// one file it names.
#pragma once

#include "grading/cube_lut.h"
#include "model/grade_values.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace tavrelune::BakedCube {

inline constexpr int exportSize = 65;
inline constexpr char namePrefix[] = "preview-grade-";

// False for a neutral grade without a LUT: nothing to bake.
bool isNeeded(const GradeValues& grade, const std::optional<CubeLUT>& lut);

// "preview-grade-<16 hex digits>.cube".
QString fileName(const GradeValues& grade, const std::optional<CubeLUT>& lut);

// The `.cube` text of an N-point table of the grade.
QByteArray text(const GradeValues& grade, const std::optional<CubeLUT>& lut, int size = exportSize);

// Writes the table into `folder` under fileName() unless that file is there
// already, and returns its path. Writes through a temporary file, so a file
// under the final name is always complete. Throws PlatformError when the
// file cannot be written.
QString writeBakedCube(const QString& folder, const GradeValues& grade, const std::optional<CubeLUT>& lut);

}  // namespace tavrelune::BakedCube
