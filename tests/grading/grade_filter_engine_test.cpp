// The live engine against the reference pipeline: every pixel within one
// 8-bit step, on seeded random images, grades and cubes, with both kernel
// sets; and the engine's rule for when it takes a LUT in again.
#include "grading/grade_filter_engine.h"
#include "grading/grade_pipeline.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace tavrelune {
namespace {

// A BGRA image, blank or of random pixels, whose rows are padded past the
// pixels with 0xEE, so that kernels which ignore the stride or write past a
// row are caught.
struct TestImage {
    int width;
    int height;
    std::ptrdiff_t stride;
    std::vector<std::uint8_t> bytes;

    TestImage(int width, int height, std::mt19937* random = nullptr)
        : width(width), height(height), stride(width * 4 + 12), bytes(static_cast<std::size_t>(stride * height), 0xEE)
    {
        for (std::size_t at = 0; random && at < bytes.size(); ++at)
            if (at % stride < std::size_t(width) * 4)
                bytes[at] = static_cast<std::uint8_t>((*random)() & 0xFF);
    }

    BgraPixels pixels() { return {bytes.data(), width, height, stride}; }
    ConstBgraPixels pixels() const { return {bytes.data(), width, height, stride}; }
};

// A cube with independent random entries, somewhat beyond 0…1.
CubeLUT randomCube(std::mt19937& random, std::int64_t size)
{
    std::uniform_real_distribution<float> value(-0.2f, 1.2f);
    auto entries = std::make_shared<std::vector<float>>(static_cast<std::size_t>(size * size * size * 4));
    for (std::size_t i = 0; i < entries->size(); ++i)
        (*entries)[i] = i % 4 == 3 ? 1.0f : value(random);
    return CubeLUT{size, std::move(entries)};
}

// Values on, just inside and just outside each stage's threshold, plus a
// spread of ordinary ones.
GradeValues randomGrade(std::mt19937& random)
{
    auto pick = [&](std::initializer_list<double> edges, double low, double high) {
        std::uniform_int_distribution<std::size_t> which(0, edges.size() + 2);
        const std::size_t index = which(random);
        if (index < edges.size())
            return *(edges.begin() + index);
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    return {
        .exposure = pick({0, 0.0005, -0.0005, 0.0004, 0.0006, -0.0006}, -3, 3),
        .contrast = pick({1, 1.0005, 0.9995, 1.0006, 0.9994, 0}, 0, 2.5),
        .saturation = pick({1, 1.0005, 0.9995, 1.0006, 0.9994, 0}, 0, 3),
        .temperature = pick({0, 0.5, -0.5, 0.51, -0.51, 250, -250, 600}, -400, 400),
        .tint = pick({0, 0.5, -0.5, 0.51, -0.51, 250, -250, -600}, -400, 400),
    };
}

std::string describe(const GradeValues& g, const std::optional<CubeLUT>& lut)
{
    return "exposure " + std::to_string(g.exposure) + " contrast " + std::to_string(g.contrast)
        + " saturation " + std::to_string(g.saturation) + " temperature " + std::to_string(g.temperature)
        + " tint " + std::to_string(g.tint)
        + " cube " + std::to_string(lut ? lut->size : 0);
}

// The engine's result (in place, or into a blank image) against the
// reference: the largest colour difference, or 255 when alpha or a row's
// padding differ at all.
int differenceFromReference(GradeFilterEngine& engine, const TestImage& source, const GradeValues& grade,
                            const std::optional<CubeLUT>& lut, bool inPlace = false)
{
    TestImage expected = source;
    GradePipeline::apply(source.pixels(), expected.pixels(), grade, lut);
    TestImage actual = inPlace ? source : TestImage(source.width, source.height);
    engine.apply(inPlace ? actual.pixels() : source.pixels(), actual.pixels(), grade, lut);
    int largest = 0;
    for (std::size_t at = 0; at < expected.bytes.size(); ++at) {
        const int difference = std::abs(expected.bytes[at] - actual.bytes[at]);
        const bool colour = at % source.stride < std::size_t(source.width) * 4 && at % 4 != 3;
        largest = std::max(largest, colour || difference == 0 ? difference : 255);
    }
    return largest;
}

class GradeFilterEngineAgreement : public testing::TestWithParam<GradeFilterEngine::Kernels> {};

TEST_P(GradeFilterEngineAgreement, RandomGradesWithAndWithoutCubes)
{
    std::mt19937 random(7);
    GradeFilterEngine engine(GetParam());
    const TestImage source(37, 9, &random);  // odd width: vector tails
    for (const std::int64_t size : {0, 2, 3, 17, 33, 64}) {
        const std::optional<CubeLUT> lut = size ? std::optional(randomCube(random, size)) : std::nullopt;
        for (int round = 0; round < 100; ++round) {
            const GradeValues grade = round ? randomGrade(random) : GradeValues{};  // neutral first
            SCOPED_TRACE(describe(grade, lut) + (round % 2 ? " in place" : ""));
            ASSERT_LE(differenceFromReference(engine, source, grade, lut, round % 2), 1);
        }
    }
}

// Every byte value on each channel beside black, mid-grey and white in the
// others, in rows longer than the vector kernel's runs: lattice points, the
// top cell, and exposures that push values past either end of the cube.
TEST_P(GradeFilterEngineAgreement, EveryByteValueThroughCubes)
{
    std::mt19937 random(11);
    TestImage source(256 + 7, 9);
    for (int y = 0; y < source.height; ++y) {
        for (int x = 0; x < source.width; ++x) {
            std::uint8_t* pixel = &source.bytes[y * source.stride + x * 4];
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = static_cast<std::uint8_t>(channel == y % 3 ? x : std::min(y / 3 * 128, 255));
            pixel[3] = static_cast<std::uint8_t>(x * 7);
        }
    }
    const double endless = std::numeric_limits<double>::infinity();
    GradeFilterEngine engine(GetParam());
    for (const std::int64_t size : {2, 5, 33, 64}) {
        const std::optional<CubeLUT> lut = randomCube(random, size);
        int round = 0;
        for (const double exposure : {0.0, 0.25, -0.6, 3.0, -3.0, 9.0, endless, -endless}) {
            const GradeValues grade{.exposure = exposure, .contrast = 1.2};
            SCOPED_TRACE(describe(grade, lut));
            ASSERT_LE(differenceFromReference(engine, source, grade, lut, ++round % 2), 1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kernels, GradeFilterEngineAgreement,
                         testing::Values(GradeFilterEngine::Kernels::fastest,
                                         GradeFilterEngine::Kernels::portable),
                         [](const auto& info) {
                             return info.param == GradeFilterEngine::Kernels::fastest ? "fastest" : "portable";
                         });

TEST(GradeFilterEngine, TakesALUTInOnlyWhenItChanges)
{
    std::mt19937 random(13);
    GradeFilterEngine engine;
    const TestImage source(8, 8, &random);
    TestImage out(8, 8);
    const CubeLUT first = randomCube(random, 33);
    const CubeLUT second = randomCube(random, 33);
    const CubeLUT firstCopied{33, std::make_shared<std::vector<float>>(*first.entries)};
    const GradeValues grade{.exposure = 0.3};
    auto run = [&](const std::optional<CubeLUT>& lut) {
        engine.apply(source.pixels(), out.pixels(), grade, lut);
        return engine.lutAssignments();
    };
    EXPECT_EQ(run(first), 1);
    EXPECT_EQ(run(first), 1) << "same LUT again";
    EXPECT_EQ(run(firstCopied), 1) << "equal entries in another buffer";
    EXPECT_EQ(run(second), 2) << "another LUT of the same size";
    EXPECT_LE(differenceFromReference(engine, source, grade, second), 1) << "shows the second LUT";
    EXPECT_EQ(run(randomCube(random, 17)), 3) << "another size";
    EXPECT_EQ(run(std::nullopt), 3);
    EXPECT_EQ(run(first), 4) << "after a call without LUT";
}

}  // namespace
}  // namespace tavrelune
