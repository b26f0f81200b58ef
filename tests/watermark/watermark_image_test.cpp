#include "watermark/watermark_image.h"
#include "support/temp_folder.h"

#include <QImage>
#include <QImageReader>
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

// 100x50 with a green square on the left half.
QString writeSvg(const TempFolder& folder)
{
    return folder.write("mark.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="50">)"
                                    R"(<rect x="0" y="0" width="50" height="50" fill="#00ff00"/></svg>)");
}

}  // namespace

TEST(WatermarkImage, RasterSizesReduceBitmapsAndScaleVectorsToTheLimit)
{
    TempFolder folder;
    for (const auto& [size, expected] : {std::pair{QSize(4000, 1000), QSize(2048, 512)}, {{300, 100}, {300, 100}},
                                         {{1, 1}, {2, 2}}, {{1000, 4000}, {512, 2048}}}) {
        const QString path = writePng(folder, "logo.png", size);
        const auto image = WatermarkImage::load(path);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->rasterPixelSize(path), expected) << size.width() << "x" << size.height();
    }

    const QString svg = writeSvg(folder);
    const auto vector = WatermarkImage::load(svg);
    ASSERT_TRUE(vector);
    EXPECT_DOUBLE_EQ(vector->aspect(), 2.0);
    EXPECT_EQ(vector->rasterPixelSize(svg), QSize(2048, 1024));
}

TEST(WatermarkImage, PngKeepsTransparencyAndRendersVectorsSharp)
{
    TempFolder folder;
    const auto vector = WatermarkImage::load(writeSvg(folder));
    const QImage rendered = QImage::fromData(*vector->pngData({2048, 1024}), "PNG");
    ASSERT_EQ(rendered.size(), QSize(2048, 1024));
    EXPECT_EQ(rendered.pixelColor(10, 10), QColor(0, 255, 0, 255));
    EXPECT_EQ(rendered.pixelColor(1500, 500).alpha(), 0) << "outside the shape stays transparent";
    EXPECT_EQ(rendered.pixelColor(1022, 500), QColor(0, 255, 0, 255)) << "edge drawn as vectors, not blurred";

    const auto bitmap = WatermarkImage::load(writePng(folder, "a.png", {40, 20}));
    const QImage halfRed = QImage::fromData(*bitmap->pngData({20, 10}), "PNG");
    EXPECT_EQ(halfRed.size(), QSize(20, 10));
    EXPECT_NEAR(halfRed.pixelColor(5, 5).alpha(), 128, 1);
    EXPECT_NEAR(halfRed.pixelColor(5, 5).red(), 255, 1);

    EXPECT_FALSE(vector->pngData({0, 10}));
}

TEST(WatermarkImage, UnreadableFilesSayWhy)
{
    TempFolder folder;
    for (const auto& [path, reason] : {std::pair{folder.write("broken.png", "not an image"),
                                                 "it is not an image in a format this system reads"},
                                       {folder.file("missing.png"), "the file does not exist"},
                                       {folder.write("empty.png", ""), "the file is empty"}}) {
        QString why;
        EXPECT_FALSE(WatermarkImage::load(path, &why));
        EXPECT_EQ(why, reason) << path.toStdString();
    }
}

TEST(WatermarkImage, BitmapsPastQtsDefaultLimitLoadReduced)
{
    TempFolder folder;
    const QString path = writePng(folder, "huge.png", {6000, 6000});
    ASSERT_TRUE(QImageReader(path).read().isNull()) << "Qt's default limit no longer refuses this size";
    const auto image = WatermarkImage::load(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->displayImage().size(), QSize(2048, 2048));
    EXPECT_EQ(image->rasterPixelSize(path), QSize(2048, 2048));
}

TEST(WatermarkImage, LargeBitmapKeepsThinStrokesWhenReduced)
{
    // One-pixel white lines every 8 pixels, reduced 4x: each line must leave
    // a quarter-strength column; point sampling would miss every one.
    TempFolder folder;
    QImage lines(8192, 16, QImage::Format_ARGB32);
    lines.fill(Qt::transparent);
    for (int x = 0; x < lines.width(); x += 8)
        for (int y = 0; y < lines.height(); ++y)
            lines.setPixelColor(x, y, Qt::white);
    const QString path = folder.file("lines.png");
    ASSERT_TRUE(lines.save(path));

    const auto image = WatermarkImage::load(path);
    ASSERT_TRUE(image);
    const QSize size = image->rasterPixelSize(path);
    ASSERT_EQ(size, QSize(2048, 4));
    const QImage reduced = QImage::fromData(*image->pngData(size), "PNG");
    double alphaSum = 0;
    int faintPairs = 0;
    for (int x = 0; x < reduced.width(); x += 2) {
        const int pairAlpha = std::max(reduced.pixelColor(x, 2).alpha(), reduced.pixelColor(x + 1, 2).alpha());
        faintPairs += pairAlpha < 48;
        alphaSum += reduced.pixelColor(x, 2).alpha() + reduced.pixelColor(x + 1, 2).alpha();
    }
    EXPECT_EQ(faintPairs, 0) << "every line is still there";
    EXPECT_NEAR(alphaSum / reduced.width(), 255.0 / 8, 2) << "the coverage is kept";
}
