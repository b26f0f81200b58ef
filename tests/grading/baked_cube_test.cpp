// The baked preview grade against the live grade on seeded random colours,
// and the naming and reuse of baked files.
#include "grading/baked_cube.h"
#include "grading/grade_filter_engine.h"
#include "grading/grade_pipeline.h"
#include "support/temp_folder.h"

#include <QFile>
#include <gtest/gtest.h>

#include <random>

namespace tavrelune {
namespace {

// A smooth warm S-curve, as a real look would be.
CubeLUT smoothLook(std::int64_t size)
{
    auto entries = std::make_shared<std::vector<float>>();
    const auto curve = [size](std::int64_t i) { const double v = double(i) / double(size - 1); return v * v * (3 - 2 * v) * 0.6 + v * 0.4; };
    for (std::int64_t b = 0; b < size; ++b)
        for (std::int64_t g = 0; g < size; ++g)
            for (std::int64_t r = 0; r < size; ++r)
                entries->insert(entries->end(), {float(curve(r) * 1.05), float(curve(g)), float(curve(b) * 0.95), 1});
    return CubeLUT{size, std::move(entries)};
}

TEST(BakedCube, LooksUpWhatTheLiveGradeShows)
{
    std::mt19937 random(12);
    std::vector<std::uint8_t> source(4096 * 4);
    for (std::uint8_t& byte : source)
        byte = static_cast<std::uint8_t>(random() & 0xFF);
    const std::pair<GradeValues, std::optional<CubeLUT>> cases[] = {
        {{.exposure = 0.3, .contrast = 1.1, .saturation = 1.2, .temperature = 30, .tint = -20}, std::nullopt},
        {{.exposure = -2.5, .contrast = 0.2, .saturation = 2.8, .temperature = -400}, std::nullopt},
        {{.contrast = 1.2, .saturation = 0.8}, smoothLook(17)},
        {{.exposure = 0.4, .temperature = -50, .tint = 35}, smoothLook(33)},  // the cube's points off the baked grid
    };
    GradeFilterEngine live;
    for (const auto& [grade, lut] : cases) {
        // Read back at full size (CubeLUT::parse would resample past 64).
        auto entries = std::make_shared<std::vector<float>>();
        for (const QByteArray& line : BakedCube::text(grade, lut).split('\n'))
            if (!line.isEmpty() && (line[0] == '-' || (line[0] >= '0' && line[0] <= '9'))) {
                for (const QByteArray& number : line.split(' '))
                    entries->push_back(number.toFloat());
                entries->push_back(1);
            }
        const CubeLUT baked{BakedCube::exportSize, entries};
        ASSERT_TRUE(entries->size() == 65u * 65 * 65 * 4);

        std::vector<std::uint8_t> shown(source.size());
        live.apply({source.data(), 4096, 1, 4096 * 4}, {shown.data(), 4096, 1, 4096 * 4}, grade, lut);
        int worst = 0;
        for (std::size_t at = 0; at < source.size(); at += 4) {
            const auto looked =
                GradePipeline::lookUp(baked, {source[at + 2] / 255.0, source[at + 1] / 255.0, source[at] / 255.0});
            for (const auto [value, byte] : {std::pair{looked.red, shown[at + 2]}, {looked.green, shown[at + 1]},
                                            {looked.blue, shown[at]}})
                worst = std::max(worst, std::abs(GradePipeline::toByte(value) - byte));
        }
        EXPECT_LE(worst, lut && grade.exposureActs() ? 2 : 1) << "exposure " << grade.exposure;
    }
}

TEST(BakedCube, EqualGradesShareOneFileThatIsWrittenOnce)
{
    const GradeValues warm{.temperature = 60};
    const QString name = BakedCube::fileName(warm, smoothLook(9));
    EXPECT_TRUE(name.startsWith("preview-grade-") && name.endsWith(".cube") && name.size() == 35) << name.toStdString();
    EXPECT_EQ(BakedCube::fileName(warm, smoothLook(9)), name) << "equal entries in another buffer";
    EXPECT_NE(BakedCube::fileName(warm, std::nullopt), name);
    EXPECT_NE(BakedCube::fileName({.temperature = 61}, smoothLook(9)), name);
    EXPECT_NE(BakedCube::fileName(warm, smoothLook(10)), name);
    EXPECT_FALSE(BakedCube::isNeeded({.exposure = 0.0004, .contrast = 1.0005}, std::nullopt));
    EXPECT_TRUE(BakedCube::isNeeded({}, smoothLook(2)));

    test::TempFolder root;
    const QString path = BakedCube::writeBakedCube(root.file("run/work"), warm, smoothLook(9));
    EXPECT_EQ(path, root.file("run/work/") + name);
    // A file already under the name holds the same grade: it is reused.
    root.write("run/work/" + name, "kept");
    EXPECT_EQ(BakedCube::writeBakedCube(root.file("run/work"), warm, smoothLook(9)), path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "kept");
}

}  // namespace
}  // namespace tavrelune
