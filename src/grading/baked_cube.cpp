#include "grading/baked_cube.h"

#include "grading/grade_pipeline.h"
#include "model/error.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <charconv>
#include <cmath>

namespace tavrelune::BakedCube {

namespace {

// Bumped when the sampling changes, so an old file is never taken for a new
// grade's.
constexpr char hashVersion[] = "preview-grade 1";

void appendNumber(QByteArray& out, double value)
{
    // A non-finite entry (only a malformed LUT gives one) would stop ffmpeg
    // reading the file; it shows as black in the preview too.
    if (!std::isfinite(value))
        value = 0;
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
    out.append(buffer, static_cast<qsizetype>(result.ptr - buffer));
}

}  // namespace

bool isNeeded(const GradeValues& grade, const std::optional<CubeLUT>& lut)
{
    return (lut && lut->isValid()) || grade.anyStageActs();
}

QString fileName(const GradeValues& grade, const std::optional<CubeLUT>& lut)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArrayView(hashVersion));
    for (const GradeControl& control : gradeControls) {
        const double value = grade.*control.member;
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(&value), sizeof value));
    }
    if (lut && lut->isValid()) {
        const std::int64_t size = lut->size;
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(&size), sizeof size));
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(lut->data()), lut->byteCount()));
    }
    return QLatin1String(namePrefix) + QString::fromLatin1(hash.result().toHex().left(16))
         + QStringLiteral(".cube");
}

QByteArray text(const GradeValues& grade, const std::optional<CubeLUT>& lut, int size)
{
    const std::optional<CubeLUT> usable = lut && lut->isValid() ? lut : std::nullopt;
    QByteArray out;
    out.reserve(static_cast<qsizetype>(size) * size * size * 28 + 64);
    out.append("# Tavrelune preview grade\nLUT_3D_SIZE ");
    out.append(QByteArray::number(size));
    out.append('\n');
    const double step = 1.0 / (size - 1);
    for (int b = 0; b < size; ++b) {
        for (int g = 0; g < size; ++g) {
            for (int r = 0; r < size; ++r) {
                const GradePipeline::Colour graded =
                    GradePipeline::apply({r * step, g * step, b * step}, grade, usable);
                appendNumber(out, graded.red);
                out.append(' ');
                appendNumber(out, graded.green);
                out.append(' ');
                appendNumber(out, graded.blue);
                out.append('\n');
            }
        }
    }
    return out;
}

QString writeBakedCube(const QString& folder, const GradeValues& grade, const std::optional<CubeLUT>& lut)
{
    const QString path = QDir(folder).filePath(fileName(grade, lut));
    if (QFileInfo(path).isFile())
        return path;
    QDir().mkpath(folder);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text(grade, lut)) < 0 || !file.commit())
        throw PlatformError(QStringLiteral("Could not write the preview grade table %1: %2")
                                .arg(QDir::toNativeSeparators(path), file.errorString()));
    return path;
}

}  // namespace tavrelune::BakedCube
