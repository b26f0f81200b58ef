// The live views under a real X server with Mesa: pictures read back from
// the OpenGL framebuffer after the real player, grader and upload path.
#include "ui/preview/graded_preview_view.h"
#include "ui/preview/player_layer_view.h"

#include "controller/controller_fixture.h"
#include "support/preview_fixtures.h"

#include <QColor>
#include <QSignalSpy>
#include <QTest>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

QColor centre(VideoFrameView& view)
{
    const QImage picture = view.grabFramebuffer();
    return picture.pixelColor(picture.width() / 2, picture.height() / 2);
}

void showAt(QWidget& view, QSize size)
{
    view.resize(size);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
}

bool isBlack(const QColor& colour)
{
    return colour.red() < 8 && colour.green() < 8 && colour.blue() < 8;
}

class ViewTest : public ControllerTest {
protected:
    bool load(ClipPreviewPlayer& player, const QString& name, const ClipSpec& spec)
    {
        makeClip(root.file(name), spec);
        return waitForTask(player.load(QUrl::fromLocalFile(root.file(name))));
    }

    ClipPreviewPlayer player{{QStringLiteral("null")}};
};

}  // namespace

TEST_F(ViewTest, GradePushesRegradeThePausedFrameAndCompareShowsTheOriginal)
{
    addAndProbe({clip("grey.mp4", previewClip(1.0, "color=c=0x505050"))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    GradedPreviewView graded(&model->previewPlayer());
    PlayerLayerView plain(&model->previewPlayer());
    showAt(graded, {320, 180});
    showAt(plain, {320, 180});
    ASSERT_TRUE(waitUntil([&] { return !isBlack(centre(graded)) && !isBlack(centre(plain)); }));
    EXPECT_NEAR(centre(graded).green(), 80, 4);

    // A slider change while paused: the frame on screen is graded again
    // (a frame whose grade began before the change may still come first).
    model->liveGrade().setExposure(1);
    model->pushLiveGradeToPreview();
    EXPECT_TRUE(waitUntil([&] { return std::abs(centre(graded).green() - 160) <= 6; }));
    EXPECT_NEAR(centre(graded).red(), 160, 6);
    EXPECT_NEAR(centre(plain).green(), 80, 4) << "the plain view never grades";

    graded.setCompareOriginal(true);
    EXPECT_TRUE(waitUntil([&] { return std::abs(centre(graded).green() - 80) <= 4; }));
    graded.setCompareOriginal(false);
    EXPECT_TRUE(waitUntil([&] { return std::abs(centre(graded).green() - 160) <= 6; }));
}

TEST_F(ViewTest, PortraitClipIsDrawnUprightBetweenBlackBars)
{
    // Left half red, right half blue, tagged to be turned so that the blue
    // half is on top (as ffmpeg shows it; see the player's test).
    ClipSpec split = previewClip(0.5, "color=c=red", 160, 90);
    split.filter = "drawbox=x=80:y=0:w=80:h=90:color=blue:t=fill";
    makeClip(root.file("split.mp4"), split);
    makeRotatedCopy(root.file("split.mp4"), root.file("turned.mp4"), 90);
    PlayerLayerView view(&player);
    showAt(view, {320, 180});
    ASSERT_TRUE(waitForTask(player.load(QUrl::fromLocalFile(root.file("turned.mp4")))));
    ASSERT_TRUE(waitUntil([&] { return !isBlack(centre(view)); }));

    const QImage picture = view.grabFramebuffer();
    ASSERT_EQ(picture.size(), QSize(320, 180));
    // 90 x 160 fitted into 320 x 180: 101 pixels wide, centred.
    EXPECT_EQ(VideoFrameView::fittedRect({90, 160}, {320, 180}), QRect(109, 0, 101, 180));
    EXPECT_TRUE(isBlack(picture.pixelColor(100, 90)));
    EXPECT_TRUE(isBlack(picture.pixelColor(215, 90)));
    EXPECT_GT(picture.pixelColor(160, 20).blue(), 200);
    EXPECT_GT(picture.pixelColor(160, 160).red(), 200);
}

TEST_F(ViewTest, ClipChangeNeverShowsThePreviousClip)
{
    GradedPreviewView view(&player);
    showAt(view, {160, 90});
    EXPECT_TRUE(isBlack(centre(view))) << "black before any frame";

    ASSERT_TRUE(load(player, "red.mp4", previewClip(0.5, "color=c=red", 160, 90)));
    ASSERT_TRUE(waitUntil([&] { return centre(view).red() > 200; }));

    // At the moment the new clip's identifier arrives, and from then on,
    // the view is black until it has the blue clip's frame.
    std::vector<QColor> seen;
    QObject::connect(&player, &ClipPreviewPlayer::loadIDChanged, &view, [&] { seen.push_back(centre(view)); });
    QObject::connect(&view, &VideoFrameView::frameDrawn, &view, [&] { seen.push_back(centre(view)); });
    ASSERT_TRUE(load(player, "blue.mp4", previewClip(0.5, "color=c=blue", 160, 90)));
    ASSERT_TRUE(waitUntil([&] { return centre(view).blue() > 200; }));
    ASSERT_FALSE(seen.empty());
    for (const QColor& colour : seen)
        EXPECT_TRUE(isBlack(colour) || colour.blue() > 200) << colour.name().toStdString();
    EXPECT_TRUE(isBlack(seen.front()));
    EXPECT_EQ(view.currentLoadID(), player.loadID());
}

TEST(VideoFrameView, FitsPicturesInsideTheSurfaceCentred)
{
    EXPECT_EQ(VideoFrameView::fittedRect({1280, 720}, {640, 360}), QRect(0, 0, 640, 360));
    EXPECT_EQ(VideoFrameView::fittedRect({1280, 720}, {400, 400}), QRect(0, 87, 400, 225));
    EXPECT_EQ(VideoFrameView::fittedRect({100, 100}, {300, 200}), QRect(50, 0, 200, 200));
    EXPECT_EQ(VideoFrameView::fittedRect({1, 50}, {300, 200}), QRect(0, 0, 1, 50)) << "too thin to scale";
}
