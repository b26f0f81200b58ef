// The `.cube` reader: one good file and one-edit variants of it, each with
// its own expected outcome; unreadable files; resampling of large tables.
#include "grading/cube_lut.h"
#include "grading/cube_text.h"
#include "grading/lut_parse_error.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <random>

namespace tavrelune {
namespace {

const std::string noSize = "The LUT has no valid 3D size.";
const std::string incomplete = "The LUT data is incomplete.";
const std::string unreadable = "The LUT file could not be read.";

// Rows whose values tell them apart: row i is (i, i + 0.25, i + 0.5) / 10.
std::string rows(int count = 8, const std::string& separator = " ", const std::string& ending = "\n")
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += std::to_string(i / 10.0) + separator + std::to_string((i + 0.25) / 10.0) + separator
            + std::to_string((i + 0.5) / 10.0) + ending;
    return text;
}

void expectRowsInFileOrder(const CubeLUT& lut)
{
    ASSERT_EQ(lut.size, 2);
    for (int i = 0; i < 8; ++i) {
        EXPECT_NEAR(lut.data()[i * 4 + 0], i / 10.0, 1e-6) << "row " << i;
        EXPECT_NEAR(lut.data()[i * 4 + 1], (i + 0.25) / 10.0, 1e-6) << "row " << i;
        EXPECT_NEAR(lut.data()[i * 4 + 2], (i + 0.5) / 10.0, 1e-6) << "row " << i;
        EXPECT_EQ(lut.data()[i * 4 + 3], 1.0f) << "row " << i;
    }
}

// The message a failed read gives the user, or "(loaded)".
template <typename Read>
std::string errorOf(Read read)
{
    try {
        read();
    } catch (const LUTParseError& error) {
        return error.description().toStdString();
    }
    return "(loaded)";
}

std::string parseError(const std::string& text)
{
    return errorOf([&] { CubeLUT::parse(text); });
}

// A good file, then one edit at a time, each still describing the same table.
TEST(CubeLUTLoad, GoodFileAndVariantsThatStillLoadTheSameTable)
{
    test::TempFolder folder;
    const std::string body = rows();
    expectRowsInFileOrder(CubeLUT::load(folder.write(
        "good.cube", QByteArray::fromStdString("# by hand\nTITLE \"two point\"\nLUT_3D_SIZE 2\n" + body))));
    const struct {
        const char* name;
        std::string text;
    } variants[] = {
        {"size keyword in lower case", "lut_3d_size 2\n" + body},
        {"other size keyword", "3DLUTSIZE 2\n" + body},
        {"size with a plus sign", "LUT_3D_SIZE +2\n" + body},
        {"later size line wins", "LUT_3D_SIZE 16\nLUT_3D_SIZE 2\n" + body},
        {"comma and space separated", "LUT_3D_SIZE 2\n" + rows(8, ", ")},
        {"tab separated", "LUT_3D_SIZE 2\n" + rows(8, "\t")},
        {"no-break spaces", "LUT_3D_SIZE\xc2\xa0" "2\n" + rows(8, "\xe3\x80\x80")},
        {"fourth number and trailing words", "LUT_3D_SIZE 2\n" + rows(8, " ", " 0.9 # note\n")},
        {"numbers in keyword and comment lines", "TITLE 1 2 3\nDOMAIN_MIN 0 0 0\n# 1 2 3\n"
                                                 "LUT_1D_INPUT_RANGE 0 1\nLUT_3D_SIZE 2\n" + body},
        {"surplus rows ignored", "LUT_3D_SIZE 2\n" + body + "9 9 9\n9 9 9\n"},
        {"CR line ends", "LUT_3D_SIZE 2\r" + rows(8, " ", "\r")},
        {"NEL and line separators", "LUT_3D_SIZE 2\xc2\x85" + rows(8, " ", "\xe2\x80\xa8")},
        {"paragraph separators", "LUT_3D_SIZE 2\xe2\x80\xa9" + rows(8, " ", "\xe2\x80\xa9")},
        {"byte order mark", "\xef\xbb\xbfLUT_3D_SIZE 2\n" + body},
        {"keyword upper-cased by Unicode rules (dotless i)", "lut_3d_s\xc4\xb1ze 2\n" + body},
    };
    for (const auto& variant : variants) {
        SCOPED_TRACE(variant.name);
        expectRowsInFileOrder(CubeLUT::parse(variant.text));
    }
}

TEST(CubeLUTLoad, VariantsAndFilesThatFailEachWithTheirOwnMessage)
{
    const std::string body = rows();
    const struct {
        const char* name;
        std::string text;
        const std::string& message;
    } variants[] = {
        {"no size line", body, noSize},
        {"size line ends in a word", "LUT_3D_SIZE 2 points\n" + body, noSize},
        {"size 1", "LUT_3D_SIZE 1\n" + body, noSize},
        {"negative size", "LUT_3D_SIZE -2\n" + body, noSize},
        {"one row missing", "LUT_3D_SIZE 2\n" + rows(7), incomplete},
        {"size whose cube overflows", "LUT_3D_SIZE 3000000000\n" + body, incomplete},
        {"not UTF-8", "LUT_3D_SIZE 2\n\xff\xfe" + body, unreadable},
    };
    for (const auto& variant : variants)
        EXPECT_EQ(parseError(variant.text), variant.message) << variant.name;
    test::TempFolder folder;
    for (const QString& path : {folder.file("missing.cube"), folder.path()})
        EXPECT_EQ(errorOf([&] { CubeLUT::load(path); }), unreadable) << path.toStdString();
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
    EXPECT_EQ(parseError(head + "0x1p0 1 1\n" + rows(7)), incomplete);
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

// Cube text whose red output is (r / top)², green g / top and blue b / top.
std::string curvedCube(int size)
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
    return text;
}

TEST(CubeLUTLoad, LargeTablesAreResampledTo64)
{
    const CubeLUT lut = CubeLUT::parse(curvedCube(65));
    ASSERT_EQ(lut.size, 64);
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
