// The ffmpeg arguments that write one still frame of a clip as an image.
//
// Pure, safe on any thread. `at` is seconds, `width` pixels; the height
// follows the source's aspect, rounded to an even number.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tavrelune {

// The image format follows the output's extension. Negative or NaN times
// seek to 0.
QStringList frameExtractionArguments(const QString& from, double at, const QString& output,
                                     int64_t width);

}  // namespace tavrelune
