// `.cube` text of a table as the previews hold it, for ffmpeg's lut3d.
//
// Pure function, any thread. The previews read every table as covering 0…1
// (DOMAIN lines are not applied) and resample one larger than 64 points;
// ffmpeg would apply the file's domain and its full size. Writing the loaded
// table back out, with no DOMAIN lines, makes the export read exactly what
// the preview shows. Values are written in the shortest form that reads back
// as the same 32-bit float.
#pragma once

#include "grading/cube_lut.h"

#include <QByteArray>

namespace tavrelune {

// A LUT_3D_SIZE line, then one "r g b" row per entry in the table's order.
// Empty for a table that is not valid.
QByteArray cubeText(const CubeLUT& lut);

}  // namespace tavrelune
