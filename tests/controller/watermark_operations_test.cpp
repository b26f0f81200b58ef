// Choosing, placing and staging the watermark through the controller.
#include "controller_fixture.h"

#include <QImage>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

QString writeImage(const TempFolder& folder, const QString& name, QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(QColor(255, 255, 255, 200));
    image.save(folder.file(name));
    return folder.file(name);
}

}  // namespace

TEST_F(ControllerTest, ANewWatermarkSitsBottomRightOfTheSelectedClip)
{
    addAndProbe({clip("wide.mov", {.width = 320, .height = 180, .seconds = 0.3, .audio = false})});
    EXPECT_FALSE(model->watermarkEditable());
    model->setWatermark(QUrl::fromLocalFile(writeImage(root, "square.png", {64, 64})));
    const WatermarkSettings placed = model->watermark();
    ASSERT_TRUE(placed.isEnabled());
    EXPECT_DOUBLE_EQ(placed.x, 0.78);
    EXPECT_DOUBLE_EQ(placed.widthFraction, 0.18);
    EXPECT_NEAR(placed.y, 0.64, 1e-12);
    EXPECT_TRUE(model->watermarkEditable());
    EXPECT_FALSE(model->watermarkPreview().isNull());

    model->updateWatermarkSize(0.3);
    model->updateWatermarkOpacity(0.5);
    model->updateWatermarkLayout(0.1, 0.1);
    model->resetWatermarkPlacement();
    EXPECT_DOUBLE_EQ(model->watermark().opacity, 0.5);
    EXPECT_DOUBLE_EQ(model->watermark().widthFraction, 0.3);
    EXPECT_NEAR(model->watermark().x, 0.66, 1e-12);

    model->updateWatermarkLayout(0.95, -1, 0.9);
    EXPECT_DOUBLE_EQ(model->watermark().widthFraction, 0.54) << "a 16:9 frame fits a square only 0.54 wide";
    EXPECT_DOUBLE_EQ(model->watermark().y, 0);
    EXPECT_NEAR(model->watermark().x, 0.46, 1e-12);

    const WatermarkSettings before = model->watermark();
    model->setWatermark(QUrl::fromLocalFile(root.write("bad.png", "not an image")));
    EXPECT_EQ(model->errorMessage(),
              "Could not read that watermark: it is not an image in a format this system reads. "
              "Use a PNG or SVG with transparency.");
    EXPECT_EQ(model->watermark(), before) << "the previous watermark stays";

    model->clearWatermark();
    EXPECT_EQ(model->watermark(), WatermarkSettings());
    EXPECT_TRUE(model->watermarkPreview().isNull());
}

TEST_F(ControllerTest, ExportedWatermarkIsStagedOnceAndLandsWhereItWasPlaced)
{
    addAndProbe({clip("a.mov", {.width = 320, .height = 180, .seconds = 0.3, .audio = false,
                                .pattern = "color=c=black"})});
    const QString logo = writeImage(root, "logo.png", {400, 100});
    model->setWatermark(QUrl::fromLocalFile(logo));
    model->updateWatermarkLayout(0.95, 0.05, 0.25);  // clamped to x = 0.75
    convert();
    ASSERT_EQ(model->statusMessage(), "Done: converted 1 clip.") << model->errorMessage().toStdString();
    const QString staged = workspace() + "/active-watermark.png";
    ASSERT_TRUE(QFile::exists(staged));
    EXPECT_EQ(QImage(staged).size(), QSize(400, 100));

    // The frame is black except for the white watermark at x 0.75..1.0, y 0.05.. of the frame.
    const QString frame = root.file("frame.png");
    ASSERT_EQ(runTool("ffmpeg", {"-v", "error", "-i", outputFolder() + "/a_graded.mp4", "-frames:v", "1",
                                 "-y", frame}).exitCode, 0);
    const QImage image(frame);
    EXPECT_GT(qGray(image.pixel(280, 20)), 150) << "inside the watermark";
    EXPECT_LT(qGray(image.pixel(200, 20)), 40) << "left of it";
    EXPECT_LT(qGray(image.pixel(280, 120)), 40) << "below it";

    const QDateTime stagedAt = QFileInfo(staged).lastModified();
    convertAgain();
    EXPECT_EQ(QFileInfo(staged).lastModified(), stagedAt) << "reused, not rendered again";
    QFile::remove(staged);
    convertAgain();
    EXPECT_TRUE(QFile::exists(staged)) << "rendered again once deleted";
}

TEST_F(ControllerTest, PortraitPhoneClipGetsItsWatermarkInsideTheUprightFrame)
{
    // Stored 320×240 but tagged to be shown turned: ffmpeg exports 240×320.
    const QString stored = clip("stored.mp4", {.width = 320, .height = 240, .seconds = 0.3, .audio = false,
                                               .pattern = "color=c=black"});
    const QString turned = root.file("portrait.mp4");
    makeRotatedCopy(stored, turned, 90);
    addAndProbe({turned});
    EXPECT_EQ(clipAt(0).width, 240);
    EXPECT_EQ(clipAt(0).height, 320);
    EXPECT_DOUBLE_EQ(model->previewVideoAspect(), 0.75);

    model->setWatermark(QUrl::fromLocalFile(writeImage(root, "logo.png", {100, 100})));
    model->updateWatermarkLayout(0.7, 0.7, 0.25);
    convert();
    ASSERT_EQ(model->statusMessage(), "Done: converted 1 clip.") << model->errorMessage().toStdString();

    const QString frame = root.file("frame.png");
    ASSERT_EQ(runTool("ffmpeg", {"-v", "error", "-i", outputFolder() + "/portrait_graded.mp4", "-frames:v", "1",
                                 "-y", frame}).exitCode, 0);
    const QImage image(frame);
    ASSERT_EQ(image.size(), QSize(240, 320));
    EXPECT_GT(qGray(image.pixel(200, 250)), 150) << "inside the watermark (x 168..228, y 224..284)";
    EXPECT_LT(qGray(image.pixel(100, 250)), 40) << "left of it";
}
