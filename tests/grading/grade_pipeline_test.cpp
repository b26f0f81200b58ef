// The reference grade on single colours: what each stage does, its
// threshold, and the order of the stages.
#include "grading/grade_pipeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavrelune {
namespace {

using GradePipeline::Colour;

struct StageCase {
    const char* name;
    GradeValues grade;
    bool withCube;
    Colour in;
    Colour expected;
};

TEST(GradePipeline, StagesAndThresholds)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const StageCase cases[] = {
        {"exposure 2 quadruples, unclamped", {.exposure = 2}, false, {0.3, 0.1, 0.2}, {1.2, 0.4, 0.8}},
        {"exposure -1 halves", {.exposure = -1}, false, {0.1, 0.2, 0.3}, {0.05, 0.1, 0.15}},
        {"exposure 0.0005 is neutral", {.exposure = 0.0005}, false, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}},
        {"temperature 1000 acts as 250", {.temperature = 1000}, false, {0.2, 0.5, 0.4}, {0.4, 0.5, 0}},
        {"temperature -125", {.temperature = -125}, false, {0.2, 0.5, 0.4}, {0.1, 0.5, 0.6}},
        {"temperature 0.5 is neutral", {.temperature = 0.5}, false, {0.2, 0.5, 0.4}, {0.2, 0.5, 0.4}},
        {"contrast 2 around 0.5", {.contrast = 2}, false, {0.5, 0.25, 0.75}, {0.5, 0, 1}},
        {"contrast 0 gives mid-grey", {.contrast = 0}, false, {0.1, 0.9, 0.3}, {0.5, 0.5, 0.5}},
        {"contrast 1.0005 is neutral", {.contrast = 1.0005}, false, {0.1, 0.9, 0.3}, {0.1, 0.9, 0.3}},
        {"saturation 0 gives Rec. 709 grey", {.saturation = 0}, false, {0.2, 0.6, 1}, {0.54384, 0.54384, 0.54384}},
        {"saturation 2 doubles the distance from grey", {.saturation = 2}, false, {1, 0, 0},
         {1.7874, -0.2126, -0.2126}},
        {"not-a-number values are neutral", {nan, nan, nan, nan}, false, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}},
        {"cube sees exposed values, clamped", {.exposure = 1}, true, {0.3, 0.7, -0.1}, {0.6, 1, 0}},
        {"contrast acts on the cube's output", {.contrast = 2}, true, {1.5, 0.25, 0.5}, {1.5, 0, 0.5}},
        {"white balance before contrast", {.contrast = 2, .temperature = 125}, false, {0.5, 0.5, 0.5},
         {1, 0.5, 0}},
    };
    for (const StageCase& c : cases) {
        SCOPED_TRACE(c.name);
        // A 2-point cube of its own coordinates: the input clamped to 0…1.
        const std::optional<CubeLUT> lut = c.withCube
            ? std::optional(CubeLUT::parse("LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n"))
            : std::nullopt;
        const Colour out = GradePipeline::apply(c.in, c.grade, lut);
        EXPECT_NEAR(out.red, c.expected.red, 1e-6);
        EXPECT_NEAR(out.green, c.expected.green, 1e-6);
        EXPECT_NEAR(out.blue, c.expected.blue, 1e-6);
    }
}

TEST(GradePipeline, CubeLookupIsTrilinearBetweenEntries)
{
    // Entry value = r + 10 g + 100 b on a 3-point cube: trilinear
    // interpolation reproduces that plane exactly, at any point.
    auto entries = std::make_shared<std::vector<float>>();
    for (int b = 0; b < 3; ++b)
        for (int g = 0; g < 3; ++g)
            for (int r = 0; r < 3; ++r)
                entries->insert(entries->end(), {float(r + 10 * g + 100 * b), 0, 0, 1});
    const CubeLUT lut{3, entries};
    const Colour out = GradePipeline::lookUp(lut, {0.3, 0.75, 1.0});
    EXPECT_NEAR(out.red, 0.6 + 10 * 1.5 + 100 * 2, 1e-9);
}

}  // namespace
}  // namespace tavrelune
