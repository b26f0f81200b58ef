#include "grading/delivery_table.h"

#include "grading/cube_writer.h"
#include "model/error.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <vector>

namespace tavrelune::DeliveryTable {

namespace {

using GradePipeline::Colour;

// SMPTE ST 2084 constants.
constexpr double pqM1 = 2610.0 / 16384;
constexpr double pqM2 = 2523.0 / 4096 * 128;
constexpr double pqC1 = 3424.0 / 4096;
constexpr double pqC2 = 2413.0 / 4096 * 32;
constexpr double pqC3 = 2392.0 / 4096 * 32;

// ARIB STD-B67 (HLG) constants.
constexpr double hlgA = 0.17883277;
constexpr double hlgB = 1 - 4 * hlgA;
const double hlgC = 0.5 - hlgA * std::log(4 * hlgA);
constexpr double hlgSystemGamma = 1.2;

constexpr double displayGamma = 2.4;

// BT.2020 to BT.709 primaries, on linear light.
constexpr double toBt709[3][3] = {{1.660491, -0.587641, -0.072850},
                                  {-0.124550, 1.132900, -0.008349},
                                  {-0.018151, -0.100579, 1.118730}};

double pqNits(double code)
{
    const double power = std::pow(code, 1 / pqM2);
    return 10000 * std::pow(std::max(power - pqC1, 0.0) / (pqC2 - pqC3 * power), 1 / pqM1);
}

double hlgSceneLight(double code)
{
    if (code <= 0.5)
        return code * code / 3;
    return (std::exp((code - hlgC) / hlgA) + hlgB) / 12;
}

Colour toBt709Primaries(Colour c)
{
    return {toBt709[0][0] * c.red + toBt709[0][1] * c.green + toBt709[0][2] * c.blue,
            toBt709[1][0] * c.red + toBt709[1][1] * c.green + toBt709[1][2] * c.blue,
            toBt709[2][0] * c.red + toBt709[2][1] * c.green + toBt709[2][2] * c.blue};
}

// Light relative to SDR white, in BT.2020 primaries.
Colour hdrLight(DeliveryConversion conversion, Colour code)
{
    if (conversion == DeliveryConversion::pq)
        return {pqNits(code.red) / sdrWhiteNits, pqNits(code.green) / sdrWhiteNits,
                pqNits(code.blue) / sdrWhiteNits};
    // Each channel's scene light through the system gamma, scaled so that
    // reference white (75 %) lands on SDR white.
    const double scale = nominalPeakNits / sdrWhiteNits;
    const auto light = [scale](double value) { return scale * std::pow(hlgSceneLight(value), hlgSystemGamma); };
    return {light(code.red), light(code.green), light(code.blue)};
}

}  // namespace

double shoulder(double relative)
{
    if (!(relative > shoulderStart))
        return relative;
    // Extended Reinhard on the part above the knee: slope 1 where it starts,
    // and the nominal peak lands exactly on white.
    const double room = 1 - shoulderStart;
    const double t = (relative - shoulderStart) / room;
    const double peak = (nominalPeakNits / sdrWhiteNits - shoulderStart) / room;
    const double compressed = t * (1 + t / (peak * peak)) / (1 + t);
    return std::min(shoulderStart + room * compressed, 1.0);
}

double encodeForDisplay(double linear)
{
    return std::pow(std::clamp(linear, 0.0, 1.0), 1 / displayGamma);
}

Colour light(DeliveryConversion conversion, Colour code)
{
    code = {clampUnit(code.red), clampUnit(code.green), clampUnit(code.blue)};
    switch (conversion) {
    case DeliveryConversion::none:
        return {std::pow(code.red, displayGamma), std::pow(code.green, displayGamma),
                std::pow(code.blue, displayGamma)};
    case DeliveryConversion::wideGamut: {
        const Colour linear = toBt709Primaries({std::pow(code.red, displayGamma), std::pow(code.green, displayGamma),
                                                std::pow(code.blue, displayGamma)});
        return linear;
    }
    case DeliveryConversion::hlg:
    case DeliveryConversion::pq:
        break;
    }
    const Colour linear = toBt709Primaries(hdrLight(conversion, code));
    // Light outside the gamut (below 0) is bent the same way, so it stays
    // smooth and bounded in the table; the encoding clips it.
    const auto bend = [](double value) { return value < 0 ? -shoulder(-value) : shoulder(value); };
    return {bend(linear.red), bend(linear.green), bend(linear.blue)};
}

Colour convert(DeliveryConversion conversion, Colour code)
{
    const Colour linear = light(conversion, code);
    return {encodeForDisplay(linear.red), encodeForDisplay(linear.green), encodeForDisplay(linear.blue)};
}

CubeLUT table(DeliveryConversion conversion, int size)
{
    if (conversion == DeliveryConversion::none || size < 2)
        return {};
    auto entries = std::make_shared<std::vector<float>>(static_cast<std::size_t>(size) * size * size * 4);
    float* out = entries->data();
    const double step = 1.0 / (size - 1);
    for (int b = 0; b < size; ++b)
        for (int g = 0; g < size; ++g)
            for (int r = 0; r < size; ++r, out += 4) {
                const Colour converted = light(conversion, {r * step, g * step, b * step});
                out[0] = static_cast<float>(converted.red);
                out[1] = static_cast<float>(converted.green);
                out[2] = static_cast<float>(converted.blue);
                out[3] = 1;
            }
    CubeLUT lut;
    lut.size = size;
    lut.entries = std::move(entries);
    return lut;
}

QByteArray encodingText(int size)
{
    QByteArray out = "# Tavrelune display encoding (gamma 2.4)\nLUT_1D_SIZE " + QByteArray::number(size) + '\n';
    char buffer[32];
    for (int i = 0; i < size; ++i) {
        const double value = encodeForDisplay(double(i) / (size - 1));
        const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 7).ptr;
        const QByteArray number(buffer, end - buffer);
        out += number + ' ' + number + ' ' + number + '\n';
    }
    return out;
}

TableFiles tableFiles(const QString& folder, DeliveryConversion conversion)
{
    const QDir dir(folder);
    return {dir.filePath(QStringLiteral("delivery-%1.cube").arg(deliveryConversionName(conversion))),
            dir.filePath(QStringLiteral("delivery-encoding.cube"))};
}

TableFiles writeTables(const QString& folder, DeliveryConversion conversion)
{
    const TableFiles files = tableFiles(folder, conversion);
    const auto write = [](const QString& path, const auto& makeText) {
        if (QFileInfo(path).isFile())
            return;
        const QByteArray text = makeText();
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
            throw PlatformError(QStringLiteral("Could not write the colour table %1: %2")
                                    .arg(QDir::toNativeSeparators(path), file.errorString()));
    };
    write(files.light, [conversion] { return cubeText(table(conversion)); });
    write(files.encoding, [] { return encodingText(); });
    return files;
}

}  // namespace tavrelune::DeliveryTable
