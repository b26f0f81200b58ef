// Loads an image file into the two forms the previews use: one to display
// and one to grade.
//
// Both are the same 8-bit straight-alpha QImage (Format_ARGB32, i.e. BGRA
// bytes) sharing one pixel buffer; pixel values are taken as stored, with no
// colour matching and no orientation applied, so the grade sees what the file
// holds. Any thread (QImage is reentrant).
#pragma once

#include <QImage>
#include <QString>
#include <optional>

namespace tavrelune {

struct PixelImage {
    QImage display;
    QImage filter;

    // The first image of the file, or none when it cannot be opened or
    // decoded. Deeper or floating-point images are reduced to 8 bits.
    static std::optional<PixelImage> load(const QString& path);
};

}  // namespace tavrelune
