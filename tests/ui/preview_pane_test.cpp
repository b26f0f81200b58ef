// The preview pane in the real window: the stage's three states, holding to
// compare (pixels read back from the live view), the transport and Space.
// Mouse events go through the window, as the X server would deliver them, so
// they reach whichever widget is on top at that point.
#define QTEST_QPA_MOUSE_HANDLING
#include "window_fixture.h"

#include "ui/preview/graded_preview_view.h"
#include "support/preview_fixtures.h"
#include "ui/live_slider.h"
#include "ui/playback_bar.h"
#include "ui/preview_pane.h"
#include "ui/preview_stage.h"
#include "ui/watermark/watermark_placement_view.h"

#include <QLabel>
#include <QPushButton>

using namespace tavrelune;
using namespace tavrelune::test;
using Content = ui::PreviewStage::Content;

namespace {

class PaneTest : public WindowTest {
protected:
    ui::PreviewPane& pane() const { return *window->previewPane(); }
    ui::PreviewStage& stage() const { return *pane().stage(); }
    ui::PlaybackBar& bar() const { return *pane().playbackBar(); }

    // A still image under a video name: mpv will not play it, ffmpeg takes
    // a frame from it.
    QString stillClip(const QString& name)
    {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(QColor(80, 80, 80));
        image.save(root.file(name), "PNG");
        return root.file(name);
    }

    QColor liveCentre() const
    {
        const QImage picture = stage().liveView()->grabFramebuffer();
        return picture.pixelColor(picture.width() / 2, picture.height() / 2);
    }
};

}  // namespace

TEST_F(PaneTest, StageShowsThePlaceholderTheGradedStillOrLiveVideo)
{
    EXPECT_EQ(stage().content(), Content::placeholder);
    EXPECT_EQ(stage().placeholderText(), "Add clips to see a preview");
    EXPECT_FALSE(bar().playAllButton()->isEnabled());
    EXPECT_FALSE(bar().timeline()->isEnabled());
    EXPECT_EQ(bar().time()->text(), "\u2014");
    EXPECT_TRUE(stage().badge()->isHidden());

    // A clip that cannot play live: its still, graded, and a play button
    // that says why it is off.
    addAndProbe({stillClip("card.mp4")});
    ASSERT_TRUE(waitUntil([this] { return stage().content() == Content::still; }));
    model->liveGrade().setExposure(1);
    model->pushLiveGradeToPreview();
    ASSERT_TRUE(waitUntil([this] {
        return stage().stillView()->image().cacheKey() == model->gradedPreview().cacheKey();
    }));
    EXPECT_NE(model->gradedPreview().cacheKey(), model->sourcePreview().cacheKey());
    EXPECT_FALSE(bar().playButton()->isEnabled());
    EXPECT_EQ(bar().playButton()->toolTip(), "This format can\u2019t be played live; scrub the timeline for stills");
    EXPECT_TRUE(bar().playAllButton()->isEnabled());
    EXPECT_EQ(stage().badge()->text(), "Graded");

    // A playable clip trimmed to 2.5 s - 7.5 s: live, on a 5 s timeline.
    addAndProbe({clip("ten.mp4", previewClip(10))});
    const QUuid ten = clipAt(1).id;
    model->updateClip(ten, [](ClipItem& clip) {
        clip.inPoint = 2.5;
        clip.outPoint = 7.5;
    });
    model->selectClip(ten);
    ASSERT_TRUE(waitUntil([this] { return stage().content() == Content::live; }));
    EXPECT_TRUE(stage().liveView()->isVisible());
    EXPECT_FALSE(stage().stillView()->isVisible());
    EXPECT_TRUE(bar().playButton()->isEnabled());
    EXPECT_EQ(bar().playButton()->toolTip(), "Play");
    EXPECT_EQ(bar().trimLabel()->text(), "0:02.5 \u2013 0:07.5");
    model->updatePreviewTime(1.5);
    EXPECT_EQ(bar().time()->text(), "0:01.5 / 0:05.0");
    EXPECT_NEAR(bar().timeline()->value(), 1.5, 1e-3);

    // Selecting an unreadable file right after another: its reason, not the
    // other's picture.
    addAndProbe({root.write("noise.mov", QByteArray(4096, '\x5a'))});
    for (const int before : {0, 1}) {
        model->selectClip(clipAt(before).id);
        ASSERT_TRUE(waitUntil([this] { return stage().content() != Content::placeholder; }));
        model->selectClip(clipAt(2).id);
        EXPECT_EQ(stage().content(), Content::placeholder) << "after " << before;
    }
    EXPECT_TRUE(stage().placeholderText().startsWith("This file can't be previewed: "));
}

TEST_F(PaneTest, HoldingThePictureShowsTheOriginalAlsoBesideTheWatermark)
{
    addAndProbe({clip("grey.mp4", previewClip(1.0, "color=c=0x505050")), clip("other.mp4", previewClip(1.0))});
    QImage logo(40, 40, QImage::Format_ARGB32);
    logo.fill(Qt::white);
    logo.save(root.file("logo.png"));
    model->setWatermark(QUrl::fromLocalFile(root.file("logo.png")));
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    model->liveGrade().setExposure(1);
    model->pushLiveGradeToPreview();
    ASSERT_TRUE(waitUntil([this] { return std::abs(liveCentre().green() - 160) <= 6; }));

    // The centre is far from the watermark (bottom right): the press goes
    // through the placement view to the stage.
    WatermarkPlacementView* top = stage().watermarkView();
    const QPoint centre = top->rect().center();
    ASSERT_FALSE(top->geometry().isEmpty());
    QTest::mousePress(top, Qt::LeftButton, {}, centre);
    EXPECT_EQ(stage().badge()->text(), "Original");
    EXPECT_TRUE(waitUntil([this] { return std::abs(liveCentre().green() - 80) <= 4; })) << "ungraded while paused";
    QTest::mouseRelease(top, Qt::LeftButton, {}, centre);
    EXPECT_EQ(stage().badge()->text(), "Graded");
    EXPECT_TRUE(waitUntil([this] { return std::abs(liveCentre().green() - 160) <= 6; }));

    // A press on the watermark moves it instead of comparing.
    const QPoint mark = top->watermarkRect().center().toPoint();
    const double x = model->watermark().x;
    QTest::mousePress(top, Qt::LeftButton, {}, mark);
    QTest::mouseMove(top, mark - QPoint(40, 0));
    QTest::mouseRelease(top, Qt::LeftButton, {}, mark - QPoint(40, 0));
    EXPECT_FALSE(stage().showingOriginal());
    EXPECT_LT(model->watermark().x, x);

    // Selecting another clip ends a comparison in progress.
    QTest::mousePress(top, Qt::LeftButton, {}, centre);
    ASSERT_TRUE(stage().showingOriginal());
    model->selectClip(clipAt(1).id);
    EXPECT_FALSE(stage().showingOriginal());
    EXPECT_EQ(stage().badge()->text(), "Graded");
    QTest::mouseRelease(top, Qt::LeftButton, {}, centre);
}

TEST_F(PaneTest, SpaceTogglesPlaybackAndEndsPlayAll)
{
    addAndProbe({clip("a.mp4", previewClip(3)), clip("b.mp4", previewClip(3))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    // A click on the bar's label gives the pane the focus.
    QTest::mouseClick(bar().time(), Qt::LeftButton);
    ASSERT_EQ(QApplication::focusWidget(), &pane());

    QTest::keyClick(&pane(), Qt::Key_Space);
    EXPECT_TRUE(model->clock().isPlaying());
    EXPECT_EQ(bar().playButton()->toolTip(), "Pause");
    QTest::keyClick(&pane(), Qt::Key_Space);
    EXPECT_FALSE(model->clock().isPlaying());

    bar().playAllButton()->click();
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlaying(); }));
    EXPECT_EQ(bar().playAllButton()->toolTip(), "Stop playing all clips");
    QTest::keyClick(&pane(), Qt::Key_Space);
    EXPECT_FALSE(model->clock().isPlaying());
    EXPECT_FALSE(model->isPlayingAll());
}

TEST_F(PaneTest, EditorKeysStepShuttleAndMarkThePlayhead)
{
    addAndProbe({clip("a.mp4", previewClip(4))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    model->updatePreviewTime(1.0);
    const double frame = 1.0 / *clipAt(0).fps;
    const auto key = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&pane(), key, modifiers);
    };
    key(Qt::Key_Right);
    EXPECT_NEAR(model->clock().seconds(), 1.0 + frame, 1e-9);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Left);
    EXPECT_NEAR(model->clock().seconds(), 2.0, 1e-9);
    key(Qt::Key_I);
    EXPECT_NEAR(clipAt(0).inPoint, 2.0, 1e-9);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_O);
    EXPECT_NEAR(clipAt(0).effectiveOutPoint(), 3.0, 1e-9);
    key(Qt::Key_Home);
    EXPECT_NEAR(model->clock().seconds(), 2.0, 1e-9);
    key(Qt::Key_End);
    EXPECT_NEAR(model->clock().seconds(), 3.0, 1e-9);

    key(Qt::Key_Home);
    key(Qt::Key_L);
    EXPECT_TRUE(model->clock().isPlaying());
    key(Qt::Key_L);
    EXPECT_EQ(pane().transport().speed(), 2);
    key(Qt::Key_K);
    EXPECT_FALSE(model->clock().isPlaying());
    EXPECT_EQ(pane().transport().speed(), 0);

    key(Qt::Key_End);
    key(Qt::Key_J);
    EXPECT_EQ(pane().transport().speed(), -1);
    ASSERT_TRUE(waitUntil([this] { return model->clock().seconds() < 2.9; })) << "runs backward";
    key(Qt::Key_K);
    EXPECT_EQ(pane().transport().speed(), 0);
    EXPECT_FALSE(model->clock().isScrubbing());
}
