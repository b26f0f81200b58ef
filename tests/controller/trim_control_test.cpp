// Trim points, the trim editor's player and the main preview following the
// trim, on a real controller.
#include "controller_fixture.h"

#include "support/preview_fixtures.h"
#include "support/task_helpers.h"

using namespace tavrelune;
using namespace tavrelune::test;

TEST_F(ControllerTest, TrimPointsStayOrderedApartAndInsideTheClip)
{
    addAndProbe({root.write("clip.mp4", "only its duration matters here")});
    struct Case {
        double duration;
        double in;
        std::optional<double> out;
        bool movesIn;
        double to;
        bool push;
        double wantIn;
        std::optional<double> wantOut;
    };
    const Case cases[] = {
        {10, 0, 5, true, 6, false, 4.88, 5},
        {10, 0, 5, true, 6, true, 6, 6.12},
        {10, 0, {}, true, 9.95, false, 9.88, {}},
        {10, 0, {}, true, 9.95, true, 9.88, {}},
        {10, 0, {}, true, -3, false, 0, {}},
        {0.24, 0, {}, true, 0.5, false, 0.12, {}},  // stops 0.12 before the out point
        {0.1, 0, {}, true, 1, false, 0.05, {}},     // gap: half of 0.1
        {0.1, 0, {}, false, 0, false, 0, 0.05},
        {10, 2, {}, false, -1, false, 2, 2.12},
        {10, 2, {}, false, -1, true, 0, 0.12},
        {10, 2, {}, false, 50, false, 2, 10},
    };
    for (const Case& c : cases) {
        model->updateClip(clipAt(0).id, [&](ClipItem& clip) {
            clip.duration = c.duration;
            clip.inPoint = c.in;
            clip.outPoint = c.out;
        });
        if (c.movesIn)
            model->updateInPoint(c.to, c.push);
        else
            model->updateOutPoint(c.to, c.push);
        const std::string label = (c.movesIn ? "in " : "out ") + std::to_string(c.to) + " on "
                                   + std::to_string(c.duration) + (c.push ? " pushing" : "");
        EXPECT_NEAR(clipAt(0).inPoint, c.wantIn, 1e-9) << label;
        EXPECT_EQ(clipAt(0).outPoint.has_value(), c.wantOut.has_value()) << label;
        EXPECT_NEAR(clipAt(0).outPoint.value_or(-1), c.wantOut.value_or(-1), 1e-9) << label;
        const double moved = c.movesIn ? clipAt(0).inPoint : *clipAt(0).outPoint;
        EXPECT_EQ(model->trimClock().seconds(), moved) << "the editor's playhead follows the handle; " << label;
    }

    // Without a known duration, trim requests change nothing.
    model->updateClip(clipAt(0).id, [](ClipItem& clip) { clip.duration.reset(); });
    const ClipItem before = clipAt(0);
    model->updateInPoint(1, true);
    model->updateOutPoint(1, true);
    EXPECT_EQ(clipAt(0), before);
}

TEST_F(ControllerTest, MainPreviewStaysInsideANewTrim)
{
    addAndProbe({clip("a.mp4", previewClip(1.5))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    model->updatePreviewTime(0.2);
    model->updateInPoint(0.5, false);
    EXPECT_EQ(model->clock().seconds(), 0.5) << "the playhead jumps to the new in point";
    EXPECT_NEAR(clipAt(0).previewFraction, 0.5 / *clipAt(0).duration, 1e-9);

    model->startPlayback();
    ASSERT_TRUE(waitUntil([this] { return model->clock().seconds() > 0.8; }, 5000));
    model->updateOutPoint(0.7, false);
    EXPECT_FALSE(model->clock().isPlaying()) << "stopped at the new out point";
    EXPECT_EQ(model->clock().seconds(), 0.7);
}

TEST_F(ControllerTest, TrimEditorPlaysTheWholeClipInItsOwnPlayer)
{
    addAndProbe({clip("a.mp4", previewClip(1.0)), clip("b.mp4", previewClip(0.5, "testsrc2", 160, 90))});
    ASSERT_TRUE(waitUntil([this] { return model->clock().isPlayable(); }));
    model->showTrimEditor();
    EXPECT_EQ(model->trimWindowToken(), 1);
    model->trimEditorAppeared();
    ASSERT_TRUE(waitUntil([this] { return model->trimClock().isPlayable(); }));

    // From the very end, trim playback starts over; it pauses the main
    // preview, runs to the end of the file and stops there.
    model->startPlayback();
    model->updateTrimPlayhead(0.97);
    model->toggleTrimPlayback();
    EXPECT_EQ(model->trimClock().seconds(), 0);
    EXPECT_TRUE(model->trimClock().isPlaying());
    EXPECT_FALSE(model->clock().isPlaying());
    ASSERT_TRUE(waitUntil([this] { return !model->trimClock().isPlaying(); }, 5000));
    EXPECT_EQ(model->trimClock().seconds(), *clipAt(0).duration);

    // A trim load overtaken by another selection leaves the later clip.
    model->selectClip(clipAt(1).id);
    model->selectClip(clipAt(0).id);
    ASSERT_TRUE(waitUntil([this] {
        const auto frame = model->trimPlayer().latestFrame();
        return frame && frame->width() == 320 && model->trimClock().isPlayable();
    }));

    model->trimEditorDisappeared();
    EXPECT_FALSE(model->trimClock().isPlayable());
    EXPECT_EQ(model->trimClock().seconds(), 0);
    EXPECT_FALSE(model->trimPlayer().hasItem());
}
