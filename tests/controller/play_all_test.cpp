// Play-all on a real controller and player: list order, trim windows,
// clips that cannot play live, and the ways a run ends.
#include "controller_fixture.h"

#include "support/preview_fixtures.h"
#include "support/task_helpers.h"

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class PlayAllTest : public ControllerTest {
protected:
    void addClips()
    {
        addAndProbe({clip("a.mp4", previewClip(0.6)), clip("b.mp4", previewClip(1.0)),
                     root.write("x.mp4", "cannot play"), clip("c.mp4", previewClip(0.6))});
        model->updateClip(clipAt(1).id, [](ClipItem& clip) {
            clip.inPoint = 0.3;
            clip.outPoint = 0.6;
        });
        ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
        QObject::connect(model.get(), &AppModel::selectedClipIDChanged, model.get(),
                         [this] { selections << model->selectedClip()->name; });
        QObject::connect(&model->clock(), &PreviewClock::secondsChanged, model.get(), [this](double seconds) {
            if (model->clock().isPlaying())
                played[model->selectedClip()->name].push_back(seconds);
        });
    }

    QStringList selections;
    std::map<QString, std::vector<double>> played;  // playhead while playing, per clip
};

}  // namespace

TEST_F(PlayAllTest, PlaysEachClipWithinItsTrimAndSkipsWhatCannotPlay)
{
    addClips();
    const QUuid loaded = model->previewPlayer().loadID();
    model->startPlayAll();
    EXPECT_TRUE(model->isPlayingAll());
    EXPECT_TRUE(model->clock().isPlaying()) << "the selected first clip starts at once";
    EXPECT_EQ(model->previewPlayer().loadID(), loaded) << "without a reload";
    EXPECT_EQ(model->clock().seconds(), 0);

    ASSERT_TRUE(waitUntil([this] { return !model->isPlayingAll(); }, 15000));
    EXPECT_EQ(selections, (QStringList{"b.mp4", "x.mp4", "c.mp4"})) << "each clip once, in list order";
    EXPECT_EQ(model->selectedClipID(), clipAt(3).id);
    EXPECT_FALSE(model->clock().isPlaying());
    EXPECT_EQ(model->clock().seconds(), clipAt(3).effectiveOutPoint());

    ASSERT_FALSE(played["b.mp4"].empty());
    for (const double seconds : played["b.mp4"])
        EXPECT_TRUE(seconds >= 0.3 && seconds <= 0.6) << seconds;
    EXPECT_GT(played["b.mp4"].back(), 0.5);
    EXPECT_GT(played["a.mp4"].back(), 0.45);
    EXPECT_TRUE(played["x.mp4"].empty());
}

TEST_F(PlayAllTest, PausingEndsTheRunAndPlayThenPlaysOnlyTheSelectedClip)
{
    model->startPlayAll();
    EXPECT_FALSE(model->isPlayingAll()) << "nothing to play";

    addClips();
    model->startPlayAll();
    ASSERT_TRUE(waitUntil([this] { return selections.size() == 1 && model->clock().isPlaying(); }, 5000));
    model->pausePlayback(true);
    EXPECT_FALSE(model->isPlayingAll());
    model->startPlayback();
    ASSERT_TRUE(waitUntil([this] { return !model->clock().isPlaying(); }, 5000));
    spinEventLoop(100);
    EXPECT_EQ(selections, QStringList{"b.mp4"});
    EXPECT_EQ(model->clock().seconds(), 0.6);
}

// Removing the clip that plays goes on with the next one; removing the last
// one while it plays ends the run, and the menu's "Stop Play All" with it.
TEST_F(PlayAllTest, RemovingThePlayingClipGoesOnWithTheNext)
{
    addClips();
    model->startPlayAll();
    const QUuid second = clipAt(1).id;
    model->removeClip(clipAt(0).id);
    EXPECT_TRUE(model->isPlayingAll());
    EXPECT_EQ(model->selectedClipID(), second);
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlaying(); }));

    model->selectClip(clipAt(2).id);  // c.mp4, the last
    model->startPlayAll();
    ASSERT_TRUE(waitUntil([this] { return model->selectedClipID() == clipAt(2).id && model->clock().isPlaying(); },
                          15000));
    model->removeClip(clipAt(2).id);
    EXPECT_FALSE(model->isPlayingAll());
    EXPECT_FALSE(model->clock().isPlaying());
}
