#include "grading/cube_writer.h"

#include <charconv>

namespace tavrelune {

QByteArray cubeText(const CubeLUT& lut)
{
    if (!lut.isValid())
        return {};
    const std::int64_t count = lut.size * lut.size * lut.size;
    QByteArray text = "LUT_3D_SIZE " + QByteArray::number(lut.size) + "\n";
    // Three values of at most 15 characters ("-1.17549435e-38"), two spaces
    // and a line feed per row.
    text.reserve(text.size() + count * 48);
    char row[64];
    const float* entry = lut.data();
    for (std::int64_t i = 0; i < count; ++i, entry += 4) {
        char* at = row;
        for (int channel = 0; channel < 3; ++channel) {
            at = std::to_chars(at, row + sizeof row, entry[channel]).ptr;
            *at++ = channel < 2 ? ' ' : '\n';
        }
        text.append(row, at - row);
    }
    return text;
}

}  // namespace tavrelune
