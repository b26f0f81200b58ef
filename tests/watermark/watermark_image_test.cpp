#include "watermark/watermark_image.h"
#include "support/temp_folder.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

using namespace tavrelune;
using tavrelune::test::TempFolder;

namespace {

QString writePng(const TempFolder& folder, const QString& name, QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(QColor(255, 0, 0, 128));
    const QString path = folder.file(name);
    image.save(path);
    return path;
}

QImage decoded(const QByteArray& png)
{
    return QImage::fromData(png, "PNG");
}

}  // namespace

TEST(WatermarkImage, RasterSizesReduceBitmapsAndScaleVectorsToTheLimit)
{
    TempFolder folder;
    struct Case {
        QSize size;
        QSize expected;
    };
    for (const Case& c : {Case{{4000, 1000}, {2048, 512}}, Case{{300, 100}, {300, 100}}, Case{{1, 1}, {2, 2}},
                          Case{{1000, 4000}, {512, 2048}}}) {
        const QString path = writePng(folder, "logo.png", c.size);
        const auto image = WatermarkImage::load(path);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->rasterPixelSize(path), c.expected) << c.size.width() << "x" << c.size.height();
    }

    const QString svg = folder.write("mark.svg",
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="50">)"
        R"(<rect x="0" y="0" width="50" height="50" fill="#00ff00"/></svg>)");
    const auto vector = WatermarkImage::load(svg);
    ASSERT_TRUE(vector);
    EXPECT_EQ(vector->pixelSize(), QSizeF(100, 50));
    EXPECT_DOUBLE_EQ(vector->aspect(), 2.0);
    EXPECT_EQ(vector->rasterPixelSize(svg), QSize(2048, 1024));
}

TEST(WatermarkImage, PngKeepsTransparencyAndRendersVectorsSharp)
{
    TempFolder folder;
    const QString svg = folder.write("mark.svg",
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="50">)"
        R"(<rect x="0" y="0" width="50" height="50" fill="#00ff00"/></svg>)");
    const QImage rendered = decoded(*WatermarkImage::load(svg)->pngData({2048, 1024}));
    ASSERT_EQ(rendered.size(), QSize(2048, 1024));
    EXPECT_EQ(rendered.pixelColor(10, 10), QColor(0, 255, 0, 255));
    EXPECT_EQ(rendered.pixelColor(1500, 500).alpha(), 0) << "outside the shape stays transparent";
    EXPECT_EQ(rendered.pixelColor(1022, 500), QColor(0, 255, 0, 255)) << "edge drawn as vectors, not blurred";

    const QImage halfRed = decoded(*WatermarkImage::load(writePng(folder, "a.png", {40, 20}))->pngData({20, 10}));
    EXPECT_EQ(halfRed.size(), QSize(20, 10));
    EXPECT_NEAR(halfRed.pixelColor(5, 5).alpha(), 128, 1);
    EXPECT_NEAR(halfRed.pixelColor(5, 5).red(), 255, 1);

    EXPECT_FALSE(WatermarkImage::load(svg)->pngData({0, 10}));
    EXPECT_FALSE(WatermarkImage::load(folder.write("broken.png", "not an image")));
    EXPECT_FALSE(WatermarkImage::load(folder.file("missing.png")));
}
