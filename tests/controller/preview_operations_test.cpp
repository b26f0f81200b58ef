// The main preview on a real controller: live clips through the real
// player (silent), stills from ffmpeg for clips it cannot play live.
#include "controller_fixture.h"

#include "support/preview_fixtures.h"
#include "support/task_helpers.h"

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class PreviewTest : public ControllerTest {
protected:
    // A still image under a video name: mpv calls it a picture, not a clip,
    // while ffmpeg still takes a frame from it.
    QString stillClip(const QString& name, QColor colour = QColor(80, 80, 80), QSize size = {64, 48})
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        image.save(root.file(name), "PNG");
        return root.file(name);
    }

    QString stillFileOf(int position) const
    {
        return workspace() + "/" + clipAt(position).id.toString(QUuid::WithoutBraces).toUpper() + "-source.png";
    }

    bool settled()
    {
        return waitUntil([this] { return model->clock().isPlayable() || !model->sourcePreview().isNull(); })
            && waitUntil([this] { return !model->isPreviewing(); });
    }
};

}  // namespace

TEST_F(PreviewTest, PlayableClipOpensLiveAtTheRememberedPlayheadInsideItsWindow)
{
    addAndProbe({clip("a.mp4", previewClip(1.0)), clip("b.mp4", previewClip(2.0))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    const double duration = *clipAt(0).duration;
    EXPECT_NEAR(model->clock().seconds(), 0.2 * duration, 1e-9);
    EXPECT_TRUE(model->sourcePreview().isNull()) << "no still for a live clip";

    model->updatePreviewTime(-5);
    EXPECT_EQ(model->clock().seconds(), 0);
    model->updatePreviewTime(1000);
    EXPECT_EQ(model->clock().seconds(), duration);
    EXPECT_EQ(clipAt(0).previewFraction, 1);
    model->updatePreviewTime(0.5);
    EXPECT_EQ(clipAt(0).previewFraction, 0.5 / duration);

    // The next clip opens where this one's playhead stands, with its grade.
    model->updateClip(clipAt(1).id, [](ClipItem& clip) { clip.grade.exposure = 0.5; });
    model->selectClip(clipAt(1).id);
    EXPECT_NEAR(clipAt(1).previewFraction, 0.5 / *clipAt(1).duration, 1e-9);
    EXPECT_EQ(model->clock().seconds(), 0.5);
    EXPECT_EQ(model->liveGrade().exposure(), 0.5);
    ClipPreviewPlayer& player = model->previewPlayer();
    ASSERT_TRUE(waitUntil([&] { return player.grade().snapshot().grade.exposure == 0.5; })) << "grade pushed";
    // The load and its seek may not have begun yet: wait for where it lands.
    EXPECT_TRUE(waitUntil([&] {
        return !player.ignoresTimeUpdates() && std::abs(player.position().value_or(-1) - 0.5) <= 0.02;
    })) << "opened at " << player.position().value_or(-1);
    EXPECT_EQ(model->previewVideoAspect(), 320.0 / 180.0);
}

TEST_F(PreviewTest, PlaybackStartsAtTheInPointAndParksOnTheOutPoint)
{
    addAndProbe({clip("a.mp4", previewClip(1.0))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    model->updateClip(clipAt(0).id, [](ClipItem& clip) {
        clip.inPoint = 0.2;
        clip.outPoint = 0.6;
    });

    for (const double offset : {0.01, 0.36}) {  // just after the in point, just before the out point
        model->updatePreviewTime(offset);
        model->startPlayback();
        EXPECT_EQ(model->clock().seconds(), 0.2) << offset;
        EXPECT_TRUE(model->clock().isPlaying());
        model->pausePlayback(true);
    }

    model->startPlayback();
    std::vector<double> playhead;
    QObject::connect(&model->clock(), &PreviewClock::secondsChanged, model.get(),
                     [&](double seconds) { playhead.push_back(seconds); });
    ASSERT_TRUE(waitUntil([this] { return !model->clock().isPlaying(); }, 5000));
    EXPECT_EQ(model->clock().seconds(), 0.6);
    EXPECT_EQ(clipAt(0).previewFraction, 0.6 / *clipAt(0).duration);
    ASSERT_GT(playhead.size(), 3u) << "the playhead followed the player";
    for (const double seconds : playhead)
        EXPECT_TRUE(seconds >= 0.2 && seconds <= 0.6) << seconds;
    spinEventLoop(150);
    EXPECT_NEAR(model->previewPlayer().position().value_or(-1), 0.6, 0.02) << "paused on the out point";
}

TEST_F(PreviewTest, ClipThatCannotPlayLiveShowsGradedStills)
{
    addAndProbe({stillClip("card.mp4")});
    ASSERT_TRUE(settled());
    EXPECT_FALSE(model->clock().isPlayable());
    EXPECT_TRUE(QFileInfo::exists(stillFileOf(0)));
    EXPECT_EQ(model->sourcePreview().size(), QSize(1280, 960));
    EXPECT_EQ(model->gradedPreview().cacheKey(), model->sourcePreview().cacheKey()) << "neutral grade";
    EXPECT_EQ(model->previewVideoAspect(), 4.0 / 3.0);

    model->liveGrade().setExposure(1);
    model->pushLiveGradeToPreview();
    EXPECT_NEAR(model->gradedPreview().pixelColor(10, 10).green(), 160, 3);
    EXPECT_NEAR(model->sourcePreview().pixelColor(10, 10).green(), 80, 3);

    // An unforced request reuses the clip's still file; a forced one runs
    // ffmpeg again. Rapid requests collapse into one extraction.
    QImage marker(2, 2, QImage::Format_RGB32);
    marker.fill(Qt::green);
    marker.save(stillFileOf(0), "PNG");
    model->scheduleFrameExtract(false);
    ASSERT_TRUE(waitUntil([this] { return model->sourcePreview().size() == QSize(2, 2); }));
    QSignalSpy previewing(model.get(), &AppModel::isPreviewingChanged);
    for (int i = 0; i < 5; ++i)
        model->scheduleFrameExtract(true);
    ASSERT_TRUE(waitUntil([this] { return model->sourcePreview().size() == QSize(1280, 960); }));
    ASSERT_TRUE(waitUntil([this] { return !model->isPreviewing(); }));
    EXPECT_EQ(previewing.count(), 2) << "one extraction: on, then off";
}

TEST_F(PreviewTest, OnlyTheLastOfQuickSelectionsIsExtractedAndAnUnreadableClipShowsNone)
{
    addAndProbe({stillClip("a.mp4"), stillClip("b.mp4", Qt::red), stillClip("c.mp4", Qt::blue),
                 root.write("broken.mp4", "not a movie")});
    ASSERT_TRUE(settled());
    model->selectClip(clipAt(1).id);
    model->selectClip(clipAt(2).id);
    ASSERT_TRUE(waitUntil([this] { return QFileInfo::exists(stillFileOf(2)) && !model->isPreviewing(); }));
    ASSERT_TRUE(waitUntil([this] { return model->sourcePreview().pixelColor(5, 5).blue() > 200; }));
    spinEventLoop(100);
    EXPECT_FALSE(QFileInfo::exists(stillFileOf(1)));
    EXPECT_TRUE(model->statusMessage().isEmpty());

    // A file that cannot be read: its reason stays with the clip (row and
    // stage), no still is tried, the status line and alerts stay quiet.
    model->selectClip(clipAt(3).id);
    spinEventLoop(100);
    EXPECT_TRUE(clipAt(3).readError.has_value());
    EXPECT_TRUE(model->statusMessage().isEmpty());
    EXPECT_TRUE(model->errorMessage().isEmpty());
    EXPECT_TRUE(model->sourcePreview().isNull());
    EXPECT_FALSE(model->isPreviewing());
}

// The frame grader holds a newly selected clip's grade from the moment it
// is selected, before the player has loaded any of its frames; until then
// nothing asks the frame on screen to be drawn again.
TEST_F(PreviewTest, ANewlySelectedClipsGradeIsInForceBeforeItsFirstFrame)
{
    addAndProbe({clip("a.mp4", previewClip(0.5)), clip("b.mp4", previewClip(0.5))});
    ASSERT_TRUE(settled());
    model->updateClip(clipAt(1).id, [](ClipItem& stored) { stored.grade.exposure = 1.5; });
    int redraws = 0;
    model->previewPlayer().onNeedsRedraw = [&redraws] { ++redraws; };
    const QUuid loadBefore = model->previewPlayer().loadID();
    model->selectClip(clipAt(1).id);
    EXPECT_EQ(model->previewPlayer().loadID(), loadBefore) << "the new clip is not loaded yet";
    EXPECT_DOUBLE_EQ(model->previewPlayer().grade().snapshot().grade.exposure, 1.5);
    EXPECT_EQ(redraws, 0);
    model->previewPlayer().onNeedsRedraw = nullptr;
}
