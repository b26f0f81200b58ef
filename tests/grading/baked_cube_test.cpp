// The baked preview grade against the live grade on seeded random colours,
// and the naming and reuse of baked files.
#include "grading/baked_cube.h"
#include "grading/grade_filter_engine.h"
#include "grading/grade_pipeline.h"
#include "model/error.h"
#include "support/temp_folder.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <charconv>
#include <random>

namespace tavrelune {
namespace {

// The baked text read back at its full size (CubeLUT::parse would resample
// past 64 points).
CubeLUT readBack(const QByteArray& text)
{
    const QList<QByteArray> lines = text.split('\n');
    std::int64_t size = 0;
    auto entries = std::make_shared<std::vector<float>>();
    for (const QByteArray& line : lines) {
        if (line.startsWith("LUT_3D_SIZE"))
            size = line.mid(12).toLongLong();
        else if (!line.isEmpty() && line[0] != '#') {
            for (const QByteArray& piece : line.split(' '))
                entries->push_back(piece.toFloat());
            entries->push_back(1.0f);
        }
    }
    return CubeLUT{size, std::move(entries)};
}

// A smooth warm S-curve, as a real look would be.
CubeLUT smoothLook(std::int64_t size)
{
    auto entries = std::make_shared<std::vector<float>>();
    const auto curve = [](double v) { return v * v * (3 - 2 * v) * 0.6 + v * 0.4; };
    for (std::int64_t b = 0; b < size; ++b)
        for (std::int64_t g = 0; g < size; ++g)
            for (std::int64_t r = 0; r < size; ++r) {
                const double step = 1.0 / double(size - 1);
                entries->insert(entries->end(), {float(curve(r * step) * 1.05), float(curve(g * step)),
                                                 float(curve(b * step) * 0.95), 1.0f});
            }
    return CubeLUT{size, std::move(entries)};
}

TEST(BakedCube, LooksUpWhatTheLiveGradeShows)
{
    std::mt19937 random(12);
    std::vector<std::uint8_t> source(4096 * 4);
    for (std::size_t at = 0; at < source.size(); ++at)
        source[at] = at % 4 == 3 ? 0xFF : static_cast<std::uint8_t>(random() & 0xFF);
    const ConstBgraPixels in{source.data(), 4096, 1, 4096 * 4};

    struct Case {
        GradeValues grade;
        std::optional<CubeLUT> lut;
        int tolerance;  // 8-bit steps
    };
    const Case cases[] = {
        {{.temperature = 60}, std::nullopt, 1},
        {{.contrast = 1.3}, std::nullopt, 1},
        {{.exposure = 0.3, .contrast = 1.1, .saturation = 1.2, .temperature = 30}, std::nullopt, 1},
        {{.exposure = -2.5, .contrast = 0.2, .saturation = 2.8, .temperature = -400}, std::nullopt, 1},
        // The cube's own points lie on the baked grid; exposure in front of
        // it moves them off, which costs interpolation error.
        {{.contrast = 1.2, .saturation = 0.8}, smoothLook(17), 1},
        {{.exposure = 0.4, .temperature = -50}, smoothLook(33), 2},
    };
    GradeFilterEngine live;
    for (const Case& c : cases) {
        const CubeLUT baked = readBack(BakedCube::text(c.grade, c.lut));
        ASSERT_EQ(baked.size, BakedCube::exportSize);
        ASSERT_EQ(std::int64_t(baked.entries->size()), baked.size * baked.size * baked.size * 4);
        std::vector<std::uint8_t> shown(source.size());
        live.apply(in, {shown.data(), 4096, 1, 4096 * 4}, c.grade, c.lut);
        int worst = 0;
        for (std::size_t at = 0; at < source.size(); at += 4) {
            const GradePipeline::Colour looked = GradePipeline::lookUp(
                baked, {source[at + 2] / 255.0, source[at + 1] / 255.0, source[at] / 255.0});
            worst = std::max({worst, std::abs(GradePipeline::toByte(looked.red) - shown[at + 2]),
                              std::abs(GradePipeline::toByte(looked.green) - shown[at + 1]),
                              std::abs(GradePipeline::toByte(looked.blue) - shown[at])});
        }
        EXPECT_LE(worst, c.tolerance) << "exposure " << c.grade.exposure << ", LUT " << (c.lut ? c.lut->size : 0);
    }
}

TEST(BakedCube, EqualGradesShareOneFileThatIsWrittenOnce)
{
    const GradeValues warm{.temperature = 60};
    const std::optional<CubeLUT> look = smoothLook(9);
    const std::optional<CubeLUT> sameLook = smoothLook(9);  // equal entries, another buffer
    const QString name = BakedCube::fileName(warm, look);
    EXPECT_TRUE(QRegularExpression("^preview-grade-[0-9a-f]{16}\\.cube$").match(name).hasMatch()) << name.toStdString();
    EXPECT_EQ(BakedCube::fileName(warm, sameLook), name);
    EXPECT_NE(BakedCube::fileName(warm, std::nullopt), name);
    EXPECT_NE(BakedCube::fileName({.temperature = 61}, look), name);
    EXPECT_NE(BakedCube::fileName(warm, smoothLook(10)), name);

    EXPECT_FALSE(BakedCube::isNeeded({.exposure = 0.0004, .contrast = 1.0005}, std::nullopt));
    EXPECT_TRUE(BakedCube::isNeeded({}, look));
    EXPECT_TRUE(BakedCube::isNeeded(warm, std::nullopt));

    test::TempFolder root;
    const QString folder = root.file("run/work");
    const QString path = BakedCube::writeBakedCube(folder, warm, look);
    EXPECT_EQ(path, folder + "/" + name);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), BakedCube::text(warm, look));
    file.close();
    // A file already there under the name is the same grade: it is reused.
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("kept");
    file.close();
    EXPECT_EQ(BakedCube::writeBakedCube(folder, warm, sameLook), path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "kept");

    // A folder that cannot be made is an error that names the file.
    const QString blocked = root.write("blocker", "a file, not a folder");
    EXPECT_THROW(BakedCube::writeBakedCube(blocked + "/sub", warm, look), PlatformError);
}

}  // namespace
}  // namespace tavrelune
