// The placement view on a real controller under a real X server: drags made
// with real mouse events, and the exported file read back with ffmpeg.
#include "ui/watermark/watermark_placement_view.h"

#include "controller/controller_fixture.h"
#include "support/preview_fixtures.h"

#include <QTest>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class PlacementViewTest : public ControllerTest {
protected:
    // An opaque green card, twice as wide as high.
    void chooseWatermark()
    {
        QImage card(120, 60, QImage::Format_ARGB32);
        card.fill(QColor(0, 255, 0));
        card.save(root.file("card.png"));
        model->setWatermark(QUrl::fromLocalFile(root.file("card.png")));
        ASSERT_TRUE(model->watermarkEditable());
    }

    void showView(QSize size)
    {
        view.resize(size);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    void drag(QPointF from, QPointF to, int steps = 4)
    {
        QTest::mousePress(&view, Qt::LeftButton, {}, from.toPoint());
        for (int i = 1; i <= steps; ++i)
            QTest::mouseMove(&view, (from + (to - from) * i / steps).toPoint());
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to.toPoint());
    }

    WatermarkPlacementView view{*model};
};

// The watermark's pixel box in a frame: where green dominates.
QRect greenBox(const QImage& frame)
{
    QRect box;
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x) {
            const QColor colour = frame.pixelColor(x, y);
            if (colour.green() > 140 && colour.red() < 110)
                box |= QRect(x, y, 1, 1);
        }
    return box;
}

}  // namespace

TEST_F(PlacementViewTest, DragsMoveAndResizeOnlyPastTheirThresholds)
{
    addAndProbe({clip("wide.mp4", previewClip(0.3, "color=c=gray", 320, 180))});
    chooseWatermark();
    showView({640, 400});
    ASSERT_EQ(view.videoRect(), QRectF(0, 20, 640, 360));
    const WatermarkSettings start = model->watermark();

    // 1 pixel is not yet a move; 64 more to the left and 36 up are 0.1 each.
    const QPointF body = view.watermarkRect().center();
    QTest::mousePress(&view, Qt::LeftButton, {}, body.toPoint());
    QTest::mouseMove(&view, (body + QPointF(1, 0)).toPoint());
    EXPECT_EQ(model->watermark(), start);
    EXPECT_FALSE(view.isDragging());
    QTest::mouseMove(&view, (body + QPointF(-64, -36)).toPoint());
    EXPECT_TRUE(view.isDragging());
    QTest::mouseRelease(&view, Qt::LeftButton, {}, (body + QPointF(-64, -36)).toPoint());
    EXPECT_NEAR(model->watermark().x, start.x - 0.1, 1e-9);
    EXPECT_NEAR(model->watermark().y, start.y - 0.1, 1e-9);

    // The top-left handle: 64 pixels to the left widen by 0.1, the
    // bottom-right corner stays where it was.
    const QRectF before = view.watermarkRect();
    drag(before.topLeft(), before.topLeft() + QPointF(-64, 0));
    const QRectF after = view.watermarkRect();
    EXPECT_NEAR(model->watermark().widthFraction, start.widthFraction + 0.1, 1e-9);
    EXPECT_NEAR(after.right(), before.right(), 1e-6);
    EXPECT_NEAR(after.bottom(), before.bottom(), 1e-6);

    // Past the frame's edge the controller's clamp holds it inside.
    drag(view.watermarkRect().center(), view.watermarkRect().center() + QPointF(600, 0));
    EXPECT_NEAR(view.watermarkRect().right(), view.videoRect().right(), 1e-6);
}

TEST_F(PlacementViewTest, ExportPutsTheWatermarkWhereTheViewShowsIt)
{
    addAndProbe({clip("dark.mp4", previewClip(0.4, "color=c=0x202020", 320, 180))});
    chooseWatermark();
    showView({500, 420});  // letter-boxed: the video does not start at the top
    // Placed by hand at an uneven spot and size.
    drag(view.watermarkRect().center(), view.watermarkRect().center() + QPointF(-173, -91));
    const QRectF corner = view.watermarkRect();
    drag(corner.bottomRight(), corner.bottomRight() + QPointF(37, 0));
    EXPECT_NE(model->watermark().widthFraction, WatermarkSettings::defaultWidthFraction);

    convert();
    ASSERT_EQ(outputNames(), QStringList{"dark_graded.mp4"});
    const QString frame = root.file("frame.png");
    ASSERT_EQ(runTool("ffmpeg", {"-v", "error", "-i", outputFolder() + "/dark_graded.mp4", "-frames:v", "1", "-y",
                                 frame}).exitCode, 0);
    const QImage exported(frame);
    ASSERT_EQ(exported.size(), QSize(320, 180));

    const QRectF video = view.videoRect();
    const QRectF shown = view.watermarkRect();
    const double scale = 320 / video.width();
    const QRect box = greenBox(exported);
    EXPECT_NEAR(box.left(), (shown.left() - video.left()) * scale, 1.0);
    EXPECT_NEAR(box.top(), (shown.top() - video.top()) * scale, 1.0);
    EXPECT_NEAR(box.right() + 1, (shown.right() - video.left()) * scale, 1.0);
    EXPECT_NEAR(box.bottom() + 1, (shown.bottom() - video.top()) * scale, 1.0);
}
