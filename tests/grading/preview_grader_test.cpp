// The still grader's identity rule and size limit, and image loading.
#include "grading/pixel_image.h"
#include "grading/preview_grader.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrelune {
namespace {

QImage gradient(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgba(x * 255 / std::max(width - 1, 1), y * 255 / std::max(height - 1, 1), 90, 200));
    return image;
}

// A 2-point cube that swaps red and blue.
const QByteArray swappingCube = "LUT_3D_SIZE 2\n0 0 0\n0 0 1\n0 1 0\n0 1 1\n1 0 0\n1 0 1\n1 1 0\n1 1 1\n";

TEST(PreviewGrader, RendersOnlyWhenTheGradeOrALUTChangesSomething)
{
    test::TempFolder folder;
    const QString cube = folder.write("swap.cube", swappingCube);
    const QImage source = gradient(16, 8);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        GradeValues grade;
        bool withLUT;
        bool renders;
    } cases[] = {
        {"neutral, no LUT", {}, false, false},
        {"just inside every band", {0.00049, 1.00049, 0.99951, 0.49}, false, false},
        {"exposure exactly at its threshold", {.exposure = 0.0005}, false, false},
        {"tint exactly at its threshold", {.tint = 0.5}, false, false},
        {"tint past it", {.tint = 0.51}, false, true},
        {"not a number is neutral", {.saturation = nan}, false, false},
        {"neutral with a LUT", {}, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PreviewGrader grader;
        grader.setSourceImage(source);
        grader.setLUT(c.withLUT ? std::optional(cube) : std::nullopt);
        const std::optional<QImage> rendered = grader.render(c.grade);
        ASSERT_EQ(rendered.has_value(), c.renders);
        if (!rendered)
            continue;
        ASSERT_EQ(rendered->size(), source.size());
        // Each stage alone treats these values as neutral, so only the LUT
        // changes anything: red and blue trade places, alpha stays.
        const QRgb before = source.pixel(15, 3);
        const QRgb after = rendered->pixel(15, 3);
        EXPECT_EQ(qRed(after), c.withLUT ? qBlue(before) : qRed(before));
        EXPECT_EQ(qBlue(after), c.withLUT ? qRed(before) : qBlue(before));
        EXPECT_EQ(qAlpha(after), qAlpha(before));
    }
    // A LUT that then fails to load leaves no LUT rather than the old one.
    PreviewGrader grader;
    grader.setLUT(std::optional(cube));
    grader.setLUT(std::optional(folder.write("bad.cube", "LUT_3D_SIZE 2\n0 0 0\n")));
    EXPECT_FALSE(grader.lut());
}

TEST(PreviewGrader, RendersNothingWithoutSourceOrForLineImages)
{
    PreviewGrader grader;
    const GradeValues brighter{.exposure = 1};
    EXPECT_FALSE(grader.render(brighter));
    for (const QSize size : {QSize(1, 40), QSize(40, 1)}) {
        grader.setSourceImage(gradient(size.width(), size.height()));
        EXPECT_FALSE(grader.render(brighter)) << size.width() << "x" << size.height();
    }
    grader.setSourceImage(gradient(2, 2));
    EXPECT_TRUE(grader.render(brighter));
}

TEST(PixelImage, LoadsStoredValuesAsEightBitBGRA)
{
    test::TempFolder folder;
    QImage deep(4, 3, QImage::Format_RGBA64);
    deep.fill(QColor::fromRgba64(0xFFFF, 0x8080, 0x0000, 0xFFFF));
    const QString png = folder.file("deep.png");
    ASSERT_TRUE(deep.save(png));
    const std::optional<PixelImage> loaded = PixelImage::load(png);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->filter.format(), QImage::Format_ARGB32);
    EXPECT_EQ(loaded->filter.pixel(2, 1), qRgba(255, 128, 0, 255));
}

}  // namespace
}  // namespace tavrelune
