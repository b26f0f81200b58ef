// The `.cube` reader: one good file and one-edit variants of it, each with
// its own expected outcome; unreadable files; resampling of large tables.
#include "grading/cube_lut.h"
#include "grading/cube_text.h"
#include "grading/lut_parse_error.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <bit>
#include <charconv>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace tavrelune {
namespace {

using Kind = LUTParseError::Kind;

// Rows whose values tell them apart: row i is (i, i + 0.25, i + 0.5) / 10.
std::string rows(int count = 8, const std::string& separator = " ", const std::string& ending = "\n")
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += std::to_string(i / 10.0) + separator + std::to_string((i + 0.25) / 10.0) + separator
            + std::to_string((i + 0.5) / 10.0) + ending;
    return text;
}

// `text` with its line feeds replaced by `breaks`, taken in turn.
std::string withBreaks(std::string text, const std::vector<std::string>& breaks)
{
    std::size_t which = 0;
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        const std::string& lineBreak = breaks[which++ % breaks.size()];
        text.replace(at, 1, lineBreak);
        at += lineBreak.size();
    }
    return text;
}

const std::string goodHeader =
    "# written by hand\nTITLE \"two point\"\nDOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 1 1\nLUT_3D_SIZE 2\n";

void expectRowsInFileOrder(const CubeLUT& lut, int count = 8)
{
    ASSERT_EQ(lut.size, 2);
    ASSERT_EQ(lut.byteCount(), 128);
    ASSERT_EQ(lut.entries->size(), 32u);
    for (int i = 0; i < count; ++i) {
        EXPECT_NEAR(lut.data()[i * 4 + 0], i / 10.0, 1e-6) << "row " << i;
        EXPECT_NEAR(lut.data()[i * 4 + 1], (i + 0.25) / 10.0, 1e-6) << "row " << i;
        EXPECT_NEAR(lut.data()[i * 4 + 2], (i + 0.5) / 10.0, 1e-6) << "row " << i;
        EXPECT_EQ(lut.data()[i * 4 + 3], 1.0f) << "row " << i;
    }
}

std::optional<Kind> parseError(const std::string& text)
{
    try {
        CubeLUT::parse(text);
    } catch (const LUTParseError& error) {
        return error.kind();
    }
    return std::nullopt;
}

TEST(CubeLUTLoad, GoodFileLoadsRowsInFileOrderWithOpaqueAlpha)
{
    test::TempFolder folder;
    const QString path = folder.write("good.cube", QByteArray::fromStdString(goodHeader + rows()));
    expectRowsInFileOrder(CubeLUT::load(path));
}

struct Variant {
    const char* name;
    std::string text;
};

// One edit each, all still describing the good table.
TEST(CubeLUTLoad, VariantsThatStillLoadTheSameTable)
{
    const std::string body = rows();
    const Variant variants[] = {
        {"size keyword in lower case", "lut_3d_size 2\n" + body},
        {"other size keyword", "3DLUTSIZE 2\n" + body},
        {"size with a plus sign", "LUT_3D_SIZE +2\n" + body},
        {"later size line wins", "LUT_3D_SIZE 16\nLUT_3D_SIZE 2\n" + body},
        {"comma separated", "LUT_3D_SIZE 2\n" + rows(8, ",")},
        {"comma and space separated", "LUT_3D_SIZE 2\n" + rows(8, ", ")},
        {"tab separated", "LUT_3D_SIZE 2\n" + rows(8, "\t")},
        {"no-break spaces", "LUT_3D_SIZE\xc2\xa0" "2\n" + rows(8, "\xe3\x80\x80")},
        {"fourth number and trailing words", "LUT_3D_SIZE 2\n" + rows(8, " ", " 0.9 # note\n")},
        {"numbers in keyword and comment lines", "TITLE 1 2 3\nDOMAIN_MIN 0 0 0\n# 1 2 3\n"
                                                 "LUT_1D_INPUT_RANGE 0 1\nLUT_3D_SIZE 2\n" + body},
        {"surplus rows ignored", "LUT_3D_SIZE 2\n" + body + "9 9 9\n9 9 9\n"},
        {"CRLF line ends", withBreaks("LUT_3D_SIZE 2\n" + body, {"\r\n"})},
        {"CR and Unicode line separators",
         withBreaks("LUT_3D_SIZE 2\n" + body, {"\r", "\xc2\x85", "\xe2\x80\xa8", "\xe2\x80\xa9"})},
        {"byte order mark", "\xef\xbb\xbfLUT_3D_SIZE 2\n" + body},
        {"keyword upper-cased by Unicode rules (dotless i)", "lut_3d_s\xc4\xb1ze 2\n" + body},
    };
    for (const Variant& variant : variants) {
        SCOPED_TRACE(variant.name);
        expectRowsInFileOrder(CubeLUT::parse(variant.text));
    }
}

TEST(CubeLUTLoad, VariantsThatFailEachWithTheirOwnError)
{
    const std::string body = rows();
    const struct {
        const char* name;
        std::string text;
        Kind kind;
    } variants[] = {
        {"no size line", body, Kind::missingSize},
        {"size line ends in a word", "LUT_3D_SIZE 2 points\n" + body, Kind::missingSize},
        {"size written as a decimal", "LUT_3D_SIZE 2.0\n" + body, Kind::missingSize},
        {"size 1", "LUT_3D_SIZE 1\n" + body, Kind::missingSize},
        {"negative size", "LUT_3D_SIZE -2\n" + body, Kind::missingSize},
        {"size beyond 64 bits", "LUT_3D_SIZE 99999999999999999999\n" + body, Kind::missingSize},
        {"only a 1D table", "LUT_1D_SIZE 8\n" + body, Kind::missingSize},
        {"one row missing", "LUT_3D_SIZE 2\n" + rows(7), Kind::incomplete},
        {"a row with two numbers", "LUT_3D_SIZE 2\n" + rows(7) + "0.7 0.725\n", Kind::incomplete},
        {"size whose cube overflows", "LUT_3D_SIZE 3000000000\n" + body, Kind::incomplete},
        {"not UTF-8", "LUT_3D_SIZE 2\n\xff\xfe" + body, Kind::unreadable},
    };
    for (const auto& variant : variants) {
        SCOPED_TRACE(variant.name);
        EXPECT_EQ(parseError(variant.text), variant.kind);
    }
}

TEST(CubeLUTLoad, NumberSyntaxes)
{
    const std::string head = "LUT_3D_SIZE 2\n";
    const CubeLUT lut = CubeLUT::parse(head + "+1 .5 1e-1\n-0 inf 1e50\n" + rows(6));
    EXPECT_EQ(lut.data()[0], 1.0f);
    EXPECT_EQ(lut.data()[1], 0.5f);
    EXPECT_EQ(lut.data()[2], 0.1f);
    EXPECT_TRUE(std::signbit(lut.data()[4]));
    EXPECT_TRUE(std::isinf(lut.data()[5]));
    EXPECT_TRUE(std::isinf(lut.data()[6]));  // beyond float range, as strtof gives it
    // Pieces that are not numbers are dropped, leaving the row short.
    EXPECT_EQ(parseError(head + "0x1p0 1 1\n" + rows(7)), Kind::incomplete);
}

TEST(CubeLUTLoad, ShortDecimalsParseExactlyAsFromChars)
{
    // Plain decimals take a quicker path than from_chars; it must round alike.
    std::mt19937 random(17);
    std::uniform_int_distribution<int> digitCount(1, 12);
    std::uniform_int_distribution<int> digit(0, 9);
    for (int i = 0; i < 200000; ++i) {
        std::string text = i % 3 ? "" : "-";
        for (int n = digitCount(random); n > 0; --n)
            text += static_cast<char>('0' + digit(random));
        text.insert(text.size() - std::min<std::size_t>(text.size(), static_cast<std::size_t>(digit(random))), ".");
        float expected = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), expected);
        const std::optional<float> parsed = cubetext::parseFloat(text);
        if (error != std::errc() || end != text.data() + text.size()) {
            EXPECT_FALSE(parsed) << text;
            continue;
        }
        ASSERT_TRUE(parsed) << text;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(*parsed), std::bit_cast<std::uint32_t>(expected)) << text;
    }
}

TEST(CubeLUTLoad, FilesThatCannotBeReadAreUnreadable)
{
    test::TempFolder folder;
    for (const QString& path : {folder.file("missing.cube"), folder.path()}) {
        SCOPED_TRACE(path.toStdString());
        try {
            CubeLUT::load(path);
            ADD_FAILURE() << "loaded";
        } catch (const LUTParseError& error) {
            EXPECT_EQ(error.kind(), Kind::unreadable);
            EXPECT_EQ(error.description(), "The LUT file could not be read.");
        }
    }
    EXPECT_EQ(LUTParseError::missingSize().description(), "The LUT has no valid 3D size.");
    EXPECT_EQ(LUTParseError::incomplete().description(), "The LUT data is incomplete.");
}

// A cube file whose red output is (r / top)², green g / top and blue b / top.
QString writeCurvedCube(const test::TempFolder& folder, int size)
{
    std::string text = "LUT_3D_SIZE " + std::to_string(size) + "\n";
    const double top = size - 1;
    char line[96];
    for (int b = 0; b < size; ++b)
        for (int g = 0; g < size; ++g)
            for (int r = 0; r < size; ++r) {
                const int length = std::snprintf(line, sizeof line, "%.9g %.9g %.9g\n",
                                                 (r / top) * (r / top), g / top, b / top);
                text.append(line, static_cast<std::size_t>(length));
            }
    return folder.write("curved.cube", QByteArray::fromStdString(text));
}

TEST(CubeLUTLoad, LargeTablesAreResampledTo64)
{
    test::TempFolder folder;
    const CubeLUT lut = CubeLUT::load(writeCurvedCube(folder, 65));
    ASSERT_EQ(lut.size, 64);
    ASSERT_EQ(lut.byteCount(), 64 * 64 * 64 * 16);
    auto entry = [&](int r, int g, int b, int channel) { return lut.data()[(r + g * 64 + b * 4096) * 4 + channel]; };
    // Corners fall on the source's corners.
    for (int corner = 0; corner < 8; ++corner) {
        const int r = corner & 1 ? 63 : 0, g = corner & 2 ? 63 : 0, b = corner & 4 ? 63 : 0;
        EXPECT_EQ(entry(r, g, b, 0), r ? 1.0f : 0.0f);
        EXPECT_EQ(entry(r, g, b, 1), g ? 1.0f : 0.0f);
        EXPECT_EQ(entry(r, g, b, 2), b ? 1.0f : 0.0f);
        EXPECT_EQ(entry(r, g, b, 3), 1.0f);
    }
    // Red index 32 sits at source position 32 / 63 × 64 = 32.50794, between
    // source samples 32 and 33, so red is blended linearly between 32² and
    // 33² (over 64²): (1024 + 0.50794 × 65) / 4096 = 0.2580605. Green index 10
    // lands at 10 / 63 × 64 on a straight ramp: 10 / 63.
    EXPECT_NEAR(entry(32, 10, 63, 0), 0.2580605, 1e-6);
    EXPECT_NEAR(entry(32, 10, 63, 1), 10.0 / 63.0, 1e-6);
    EXPECT_EQ(entry(32, 10, 63, 2), 1.0f);
}

}  // namespace
}  // namespace tavrelune
