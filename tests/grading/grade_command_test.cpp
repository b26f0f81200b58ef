// `tavrelune grade` end to end: the real binary on generated images.
#include "grading/pixel_image.h"
#include "grading/preview_grader.h"
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

namespace tavrelune {
namespace {

test::ToolResult grade(const QStringList& arguments)
{
    return test::runTool(TAVRELUNE_BINARY, QStringList{"grade"} + arguments);
}

class GradeCommand : public testing::Test {
protected:
    void SetUp() override
    {
        QImage image(24, 16, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * 10, y * 15, 128));
        input = folder.file("frame.png");
        ASSERT_TRUE(image.save(input));
    }

    QImage loaded(const QString& path) const { return PixelImage::load(path).value_or(PixelImage{}).filter; }

    test::TempFolder folder;
    QString input;
};

TEST_F(GradeCommand, WritesWhatTheStillPreviewShows)
{
    const QString cube = folder.write("look.cube",
                                      "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n0.9 0.9 0.8\n");
    const QString output = folder.file("graded.png");
    const test::ToolResult result = grade({input, "-o", output, "--lut", cube, "--exposure", "-0.5",
                                           "--contrast", "1.2", "--saturation", "0.7", "--temperature", "60"});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();

    PreviewGrader grader;
    grader.setSourceImage(loaded(input));
    grader.setLUT(std::optional(cube));
    const std::optional<QImage> expected = grader.render({-0.5, 1.2, 0.7, 60});
    ASSERT_TRUE(expected);
    EXPECT_EQ(loaded(output), *expected);
}

TEST_F(GradeCommand, NeutralGradeWritesTheInputUnchangedAndReplacesTheOutput)
{
    const QString output = folder.write("existing.png", "old contents");
    const test::ToolResult result = grade({input, "--output", output});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(loaded(output), loaded(input));
}

TEST_F(GradeCommand, RefusesBadArgumentsWithAReason)
{
    const QString badCube = folder.write("bad.cube", "LUT_3D_SIZE 2\n0 0 0\n");
    const QString output = folder.file("out.png");
    const struct {
        QStringList arguments;
        int status;
        const char* message;
    } cases[] = {
        {{input, "-o", output, "--lut", badCube}, 1, "The LUT data is incomplete."},
        {{input, "-o", output, "--exposure", "bright"}, 2, "--exposure: 'bright' is not a number"},
        {{input, "-o", output, "--contrast", "nan"}, 2, "--contrast: 'nan' is not a number"},
        {{input, "-o", output, "--exposure", "99"}, 2, "--exposure: 99 is outside -3 to 3"},
        {{input, "-o", folder.file("out.jpg")}, 2, "OUTPUT must be a .png file"},
        {{input, "-o", input}, 2, "OUTPUT is the INPUT file"},
        {{input}, 2, "no OUTPUT given"},
        {{"-o", output}, 2, "no INPUT given"},
        {{folder.write("text.png", "not an image"), "-o", output}, 1, "could not read the image"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const test::ToolResult result = grade(c.arguments);
        EXPECT_EQ(result.exitCode, c.status);
        EXPECT_TRUE(result.err.startsWith("tavrelune grade: ")) << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(c.message)) << result.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(output));
    }
    EXPECT_EQ(loaded(input).size(), QSize(24, 16)) << "input untouched";
}

}  // namespace
}  // namespace tavrelune
