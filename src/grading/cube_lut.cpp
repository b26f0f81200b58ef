#include "grading/cube_lut.h"

#include "grading/cube_resample.h"
#include "grading/cube_text.h"
#include "grading/lut_parse_error.h"

#include <QFile>
#include <cstring>

namespace tavrelune {

namespace {

// Room for a 32-point table, the most common size, before any reallocation.
constexpr std::size_t initialValueCapacity = 32 * 32 * 32 * 3;

// No real file reaches this size; above it size³ × 3 could overflow.
constexpr std::int64_t largestCountableSize = 1'000'000;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

struct ParsedText {
    std::int64_t size = 0;
    std::vector<float> rgb;  // 3 floats per row, in file order
};

// Keyword lines are told apart by their upper-cased start; everything else
// that holds three numbers is a row.
void parseLine(std::string_view line, ParsedText& parsed)
{
    using namespace cubetext;
    if (line.empty() || line.front() == '#')
        return;
    if (startsWithKeyword(line, "TITLE") || startsWithKeyword(line, "DOMAIN_"))
        return;
    if (startsWithKeyword(line, "LUT_3D_SIZE") || startsWithKeyword(line, "3DLUTSIZE")) {
        std::string_view last;
        std::size_t offset = 0;
        for (std::string_view piece = nextPiece(line, offset, false); !piece.empty();
             piece = nextPiece(line, offset, false))
            last = piece;
        if (const auto size = parseInteger(last))
            parsed.size = *size;
        return;
    }
    if (startsWithKeyword(line, "LUT_1D_SIZE"))
        return;

    float row[3];
    int count = 0;
    std::size_t offset = 0;
    for (std::string_view piece = nextPiece(line, offset, true); !piece.empty() && count < 3;
         piece = nextPiece(line, offset, true)) {
        if (const auto value = parseFloat(piece))
            row[count++] = *value;
    }
    if (count == 3)
        parsed.rgb.insert(parsed.rgb.end(), row, row + 3);
}

ParsedText parseText(std::string_view text)
{
    ParsedText parsed;
    parsed.rgb.reserve(initialValueCapacity);
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end) {
        const char* lineStart = at;
        int breakLength = 0;
        while (at < end && (breakLength = cubetext::lineBreakLength(at, end)) == 0)
            ++at;
        parseLine(cubetext::trimmed({lineStart, static_cast<std::size_t>(at - lineStart)}), parsed);
        at += breakLength;
    }
    return parsed;
}

}  // namespace

CubeLUT CubeLUT::parse(std::string_view text)
{
    if (!cubetext::isValidUtf8(text))
        throw LUTParseError::unreadable();
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());

    ParsedText parsed = parseText(text);
    const std::int64_t size = parsed.size;
    if (size < 2)
        throw LUTParseError::missingSize();
    const auto available = static_cast<std::int64_t>(parsed.rgb.size());
    if (size > largestCountableSize || size * size * size * 3 > available)
        throw LUTParseError::incomplete();

    std::vector<float> rgb = std::move(parsed.rgb);
    rgb.resize(static_cast<std::size_t>(size * size * size * 3));
    std::int64_t target = size;
    if (size > maximumSize) {
        rgb = resampleCube(rgb, size, maximumSize);
        target = maximumSize;
    }

    const auto count = static_cast<std::size_t>(target * target * target);
    auto rgba = std::make_shared<std::vector<float>>(count * 4);
    float* out = rgba->data();
    const float* in = rgb.data();
    for (std::size_t i = 0; i < count; ++i, in += 3, out += 4) {
        out[0] = in[0];
        out[1] = in[1];
        out[2] = in[2];
        out[3] = 1.0f;
    }
    return CubeLUT{target, std::move(rgba)};
}

CubeLUT CubeLUT::load(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw LUTParseError::unreadable();
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw LUTParseError::unreadable();
    return parse({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

bool CubeLUT::operator==(const CubeLUT& other) const
{
    if (size != other.size)
        return false;
    if (entries == other.entries)
        return true;
    if (!entries || !other.entries || entries->size() != other.entries->size())
        return false;
    return std::memcmp(entries->data(), other.entries->data(), entries->size() * sizeof(float)) == 0;
}

}  // namespace tavrelune
