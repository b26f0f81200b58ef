// The live engine against the reference pipeline: every pixel within one
// 8-bit step, on seeded random images, grades and cubes, with both kernel
// sets; and the engine's rule for when it takes a LUT in again.
#include "grading/grade_filter_engine.h"
#include "grading/grade_pipeline.h"
#include "grade_test_support.h"

#include <gtest/gtest.h>

namespace tavrelune {
namespace {

using test::TestImage;

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
    };
}

std::string describe(const GradeValues& g, const std::optional<CubeLUT>& lut)
{
    return "exposure " + std::to_string(g.exposure) + " contrast " + std::to_string(g.contrast)
        + " saturation " + std::to_string(g.saturation) + " temperature " + std::to_string(g.temperature)
        + " cube " + std::to_string(lut ? lut->size : 0);
}

int differenceFromReference(GradeFilterEngine& engine, const TestImage& source, const GradeValues& grade,
                            const std::optional<CubeLUT>& lut)
{
    TestImage expected = source;
    GradePipeline::apply(source.pixels(), expected.pixels(), grade, lut);
    TestImage actual = source;
    engine.apply(source.pixels(), actual.pixels(), grade, lut);
    return test::largestDifference(expected, actual);
}

class GradeFilterEngineAgreement : public testing::TestWithParam<GradeFilterEngine::Kernels> {};

TEST_P(GradeFilterEngineAgreement, RandomGradesWithoutCube)
{
    std::mt19937 random(7);
    GradeFilterEngine engine(GetParam());
    const TestImage source = test::randomImage(random, 37, 9);  // odd width: vector tails
    for (int round = 0; round < 300; ++round) {
        const GradeValues grade = randomGrade(random);
        SCOPED_TRACE(describe(grade, std::nullopt));
        ASSERT_LE(differenceFromReference(engine, source, grade, std::nullopt), 1);
    }
}

TEST_P(GradeFilterEngineAgreement, RandomGradesWithCubes)
{
    std::mt19937 random(11);
    GradeFilterEngine engine(GetParam());
    const TestImage source = test::randomImage(random, 45, 7);
    for (const std::int64_t size : {2, 3, 17, 33, 64}) {
        const CubeLUT lut = test::randomCube(random, size);
        for (int round = 0; round < 40; ++round) {
            const GradeValues grade = randomGrade(random);
            SCOPED_TRACE(describe(grade, lut));
            ASSERT_LE(differenceFromReference(engine, source, grade, lut), 1);
        }
    }
}

TEST_P(GradeFilterEngineAgreement, InPlaceKeepsAlphaAndPadding)
{
    std::mt19937 random(3);
    GradeFilterEngine engine(GetParam());
    const TestImage source = test::randomImage(random, 19, 5);
    const CubeLUT lut = test::randomCube(random, 9);
    for (const auto& cube : {std::optional<CubeLUT>(), std::optional(lut)}) {
        const GradeValues grade{.exposure = 0.4, .contrast = 1.3, .saturation = 0.6, .temperature = 90};
        TestImage expected = source;
        GradePipeline::apply(source.pixels(), expected.pixels(), grade, cube);
        TestImage inPlace = source;
        engine.apply(inPlace.pixels(), inPlace.pixels(), grade, cube);
        EXPECT_LE(test::largestDifference(expected, inPlace), 1);
        for (int y = 0; y < source.height; ++y) {
            for (int x = 0; x < source.width; ++x)
                ASSERT_EQ(inPlace.bytes[y * source.stride + x * 4 + 3], source.bytes[y * source.stride + x * 4 + 3]);
            for (auto at = y * source.stride + source.width * 4; at < (y + 1) * source.stride; ++at)
                ASSERT_EQ(inPlace.bytes[at], 0xEE) << "padding written";
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
    const TestImage source = test::randomImage(random, 8, 8);
    TestImage out(8, 8);
    const CubeLUT first = test::randomCube(random, 33);
    const CubeLUT second = test::randomCube(random, 33);
    const CubeLUT firstCopied{33, std::make_shared<std::vector<float>>(*first.entries)};
    const GradeValues grade{.exposure = 0.3};
    auto run = [&](const std::optional<CubeLUT>& lut) {
        engine.apply(source.pixels(), out.pixels(), grade, lut);
        return engine.lutAssignments();
    };
    EXPECT_EQ(engine.cachedLUTSize(), -1);
    EXPECT_EQ(run(first), 1);
    EXPECT_EQ(engine.cachedLUTSize(), 33);
    EXPECT_EQ(engine.cachedLUTByteCount(), 33 * 33 * 33 * 16);
    EXPECT_EQ(run(first), 1) << "same LUT again";
    EXPECT_EQ(run(firstCopied), 1) << "equal entries in another buffer";
    EXPECT_EQ(run(second), 2) << "another LUT of the same size";
    EXPECT_LE(differenceFromReference(engine, source, grade, second), 1) << "shows the second LUT";
    EXPECT_EQ(run(test::randomCube(random, 17)), 3) << "another size";
    EXPECT_EQ(run(std::nullopt), 3);
    EXPECT_EQ(engine.cachedLUTSize(), -1);
    EXPECT_EQ(engine.cachedLUTByteCount(), -1);
    EXPECT_EQ(run(first), 4) << "after a call without LUT";
}

}  // namespace
}  // namespace tavrelune
