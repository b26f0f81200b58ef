// The "In & Out" window on a real controller, real clips and the real trim
// player (mpv with ao=null) under Xvfb: what it shows in each state, drags
// on its timeline reaching the trim points, its buttons and its keys.
#include "ui/trim/trim_editor_view.h"

#include "controller/controller_fixture.h"
#include "ui/preview/player_layer_view.h"
#include "support/preview_fixtures.h"
#include "ui/trim/trim_timeline_view.h"
#include "ui/elided_label.h"
#include "ui/trim_window.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class EditorTest : public ControllerTest {
protected:
    EditorTest()
    {
        window = std::make_unique<ui::TrimWindow>(*model);
        window->present();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        editor = qobject_cast<trim::TrimEditorView*>(window->body());
    }

    template <typename Widget = QWidget>
    Widget* part(const char* name) const
    {
        return editor->findChild<Widget*>(QString::fromLatin1(name));
    }
    QString text(const char* name) const { return part<QLabel>(name)->text(); }
    bool shown(const char* name) const { return part(name)->isVisibleTo(editor); }
    bool enabled(const char* name) const { return part(name)->isEnabled(); }
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(editor, Qt::Key(key), modifiers);
    }
    trim::TrimTimelineView& timeline() const { return *editor->timeline(); }
    // Where a time of the selected clip lies on the timeline.
    QPoint at(double seconds) const { return QPoint(int(std::lround(timeline().trimGeometry().x(seconds))), 17); }

    std::unique_ptr<ui::TrimWindow> window;
    trim::TrimEditorView* editor = nullptr;
};

}  // namespace

TEST_F(EditorTest, ShowsWhatTheSelectionAllows)
{
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(part<ui::ElidedLabel>("trimClipName")->fullText(), "No clip selected");
    EXPECT_TRUE(shown("trimNoClip"));
    EXPECT_FALSE(enabled("trimPlay"));
    EXPECT_EQ(timeline().state().duration, 0);
    EXPECT_FALSE(timeline().state().enabled);
    EXPECT_FALSE(enabled("trimSetIn"));
    for (const char* label : {"trimInLabel", "trimOutLabel", "trimTimeLabel"})
        EXPECT_EQ(text(label), "\u2014") << label;
    EXPECT_EQ(window->focusWidget(), editor) << "Space must reach the editor";

    // Sound only: no picture to play, yet the length can be trimmed.
    addAndProbe({clip("voice.mp4", {.seconds = 2, .videoCodec = ""})});
    ASSERT_TRUE(waitUntil([this] { return shown("trimUnplayable"); }));
    EXPECT_FALSE(enabled("trimPlay"));
    EXPECT_TRUE(timeline().state().enabled);
    EXPECT_EQ(text("trimInLabel"), "0:00.0");
    key(Qt::Key_Right, Qt::ShiftModifier);
    QTest::mouseClick(part<QPushButton>("trimSetOut"), Qt::LeftButton);
    EXPECT_EQ(clipAt(0).outPoint, 1.0);
    EXPECT_TRUE(shown("trimKeep") && shown("trimReset"));
    EXPECT_EQ(text("trimKeep"), "Keep 0:01.0");
    QTest::mouseClick(part<QPushButton>("trimReset"), Qt::LeftButton);
    EXPECT_FALSE(clipAt(0).isTrimmed());
    EXPECT_FALSE(shown("trimKeep") || shown("trimReset"));

    // A length not known yet.
    model->updateClip(clipAt(0).id, [](ClipItem& clip) { clip.duration.reset(); });
    EXPECT_EQ(text("trimOutLabel"), "\u2014");
    EXPECT_FALSE(timeline().state().enabled);
    EXPECT_FALSE(enabled("trimSetIn"));
}

TEST_F(EditorTest, DragsMoveOnePointAndStopShortOfTheOther)
{
    addAndProbe({clip("a.mp4", previewClip(2.0))});
    ASSERT_TRUE(waitUntil([this] { return model->trimClock().isPlayable(); }));
    EXPECT_TRUE(shown("trimPlayerView"));
    EXPECT_EQ(text("trimTimeLabel"), "0:00.0 / 0:02.0");

    // The out handle dragged to 1 s, then the in handle dragged past it:
    // the in point stops 0.12 s before the out point, which stays.
    QTest::mousePress(&timeline(), Qt::LeftButton, {}, at(2));
    EXPECT_TRUE(model->trimClock().isScrubbing());
    QTest::mouseMove(&timeline(), at(1));
    QTest::mouseRelease(&timeline(), Qt::LeftButton, {}, at(1));
    EXPECT_FALSE(model->trimClock().isScrubbing());
    EXPECT_NEAR(*clipAt(0).outPoint, 1, 0.02);
    const double out = *clipAt(0).outPoint;
    QTest::mousePress(&timeline(), Qt::LeftButton, {}, at(0));
    QTest::mouseMove(&timeline(), at(1.8));
    QTest::mouseRelease(&timeline(), Qt::LeftButton, {}, at(1.8));
    EXPECT_NEAR(clipAt(0).inPoint, out - 0.12, 1e-9);
    EXPECT_EQ(*clipAt(0).outPoint, out);
    EXPECT_EQ(model->trimClock().seconds(), clipAt(0).inPoint) << "the playhead follows the handle";
    EXPECT_EQ(timeline().state().inPoint, clipAt(0).inPoint) << "the timeline draws the controller's points";

    // The playhead dragged beyond the out point, then "Set In" there pushes
    // the out point along; the keys do the same with I.
    QTest::mousePress(&timeline(), Qt::LeftButton, {}, at(1.5));
    QTest::mouseRelease(&timeline(), Qt::LeftButton, {}, at(1.5));
    QTest::mouseClick(part<QPushButton>("trimSetIn"), Qt::LeftButton);
    EXPECT_NEAR(clipAt(0).inPoint, 1.5, 0.02);
    EXPECT_NEAR(*clipAt(0).outPoint, clipAt(0).inPoint + 0.12, 1e-9);
}

TEST_F(EditorTest, KeysPlayStepSetAndClose)
{
    addAndProbe({clip("a.mp4", previewClip(2.0, "testsrc2", 320, 180, "25"))});
    ASSERT_TRUE(waitUntil([this] { return model->trimClock().isPlayable(); }));
    const auto seconds = [this] { return model->trimClock().seconds(); };

    QTest::mouseClick(&timeline(), Qt::LeftButton, {}, at(0));
    QTest::keyClick(&timeline(), Qt::Key_Right);
    EXPECT_NEAR(seconds(), 0.04, 1e-9) << "one frame at 25 fps, also after a click on the timeline";
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_NEAR(seconds(), 1.04, 1e-9);
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_NEAR(seconds(), 0.96, 1e-9);
    key(Qt::Key_I);
    EXPECT_NEAR(clipAt(0).inPoint, 0.96, 1e-9);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_O);
    EXPECT_NEAR(*clipAt(0).outPoint, 1.96, 1e-9);
    key(Qt::Key_Home);
    EXPECT_NEAR(seconds(), 0.96, 1e-9);
    key(Qt::Key_Left, Qt::ShiftModifier);
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(seconds(), 0) << "stepping stops at the clip's start";
    key(Qt::Key_O);
    EXPECT_EQ(clipAt(0).inPoint, 0) << "O before the in point pushes it back";
    EXPECT_NEAR(*clipAt(0).outPoint, 0.12, 1e-9);
    key(Qt::Key_End);
    EXPECT_NEAR(seconds(), 0.12, 1e-9);

    // Space plays and pauses, but cannot start playback while converting;
    // the trim keys and "Done" rest meanwhile.
    key(Qt::Key_Space);
    EXPECT_TRUE(model->trimClock().isPlaying());
    EXPECT_EQ(part<QPushButton>("trimPlay")->toolTip(), "Pause");
    key(Qt::Key_Space);
    EXPECT_FALSE(model->trimClock().isPlaying());
    key(Qt::Key_Space);
    window->setWindowState(Qt::WindowMinimized);
    EXPECT_FALSE(model->trimClock().isPlaying()) << "nothing plays unseen";
    window->setWindowState(Qt::WindowNoState);
    model->startConversion();
    ASSERT_TRUE(model->isConverting());
    EXPECT_FALSE(enabled("trimDone") || enabled("trimPlay") || enabled("trimSetIn") || timeline().isEnabled());
    key(Qt::Key_Space);
    EXPECT_FALSE(model->trimClock().isPlaying());
    const ClipItem before = clipAt(0);
    key(Qt::Key_I);
    key(Qt::Key_Return);
    EXPECT_EQ(clipAt(0).inPoint, before.inPoint);
    EXPECT_TRUE(window->isVisible());
    model->cancelConversion();
    waitForTask(model->conversionFinished());

    key(Qt::Key_Return);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(model->trimPlayer().hasItem()) << "closing unloads the trim player";
}
