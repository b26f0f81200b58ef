// The libmpv player on real clips (silent audio output): what it calls
// playable, the frames it renders, seeks with their report suppression, and
// the end of a clip.
#include "preview/clip_preview_player.h"

#include "async/blocking_wait.h"
#include "support/preview_fixtures.h"
#include "support/task_helpers.h"
#include "support/temp_folder.h"

#include <QColor>
#include <QFile>
#include <QSignalSpy>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class PlayerTest : public ::testing::Test {
protected:
    QUrl clip(const QString& name, const ClipSpec& spec)
    {
        makeClip(root.file(name), spec);
        return QUrl::fromLocalFile(root.file(name));
    }

    bool load(const QUrl& url) { return waitForTask(player.load(url)); }

    std::shared_ptr<const VideoFrame> waitForFrame()
    {
        waitUntil([this] { return player.latestFrame() != nullptr; }, 5000);
        return player.latestFrame();
    }

    TempFolder root;
    ClipPreviewPlayer player{{QStringLiteral("null")}};
};

QColor pixel(const VideoFrame& frame, int x, int y)
{
    return frame.toImage().pixelColor(x, y);
}

}  // namespace

TEST_F(PlayerTest, PlaysVideoButNotAudioOnlyOrUndecodableFiles)
{
    const QUrl video = clip("clip.mp4", previewClip(1.0));
    const QUrl audioOnly = clip("song.m4a", {.audio = true, .videoCodec = ""});
    const QUrl text = QUrl::fromLocalFile(root.write("notes.mp4", "not a movie at all"));
    QSignalSpy loadIDs(&player, &ClipPreviewPlayer::loadIDChanged);

    const QUuid before = player.loadID();
    EXPECT_FALSE(player.hasItem()) << "a new player is empty";
    ASSERT_TRUE(load(video));
    EXPECT_TRUE(player.hasItem());
    EXPECT_NE(player.loadID(), before);
    EXPECT_EQ(loadIDs.count(), 1);
    EXPECT_TRUE(player.preferredTransform().isIdentity());
    const auto frame = waitForFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(QSize(frame->width(), frame->height()), QSize(320, 180));

    // A failed load leaves the player empty and keeps the load identifier.
    const QUuid loaded = player.loadID();
    for (const QUrl& unplayable : {audioOnly, text}) {
        EXPECT_FALSE(load(unplayable)) << unplayable.toLocalFile().toStdString();
        EXPECT_FALSE(player.hasItem());
        EXPECT_FALSE(player.latestFrame());
        EXPECT_FALSE(player.ignoresTimeUpdates());
        EXPECT_EQ(player.loadID(), loaded);
    }

    // Back to a playable clip; then unloading empties the player.
    ASSERT_TRUE(load(video));
    player.unload();
    EXPECT_FALSE(player.hasItem());
    EXPECT_FALSE(player.latestFrame());
    EXPECT_EQ(loadIDs.count(), 3);
}

TEST_F(PlayerTest, OverlappingLoadsAllResolveWithTheNewestResult)
{
    const QUrl first = clip("first.mp4", previewClip(0.5));
    const QUrl text = QUrl::fromLocalFile(root.write("second.mp4", "text"));
    std::optional<bool> firstResult;
    auto waitFirst = [&]() -> QCoro::Task<> { firstResult = co_await player.load(first); };
    auto pending = waitFirst();
    EXPECT_FALSE(load(text));
    waitUntil([&] { return firstResult.has_value(); });
    EXPECT_EQ(firstResult, false) << "the overtaken load reports what the player now holds";
}

TEST_F(PlayerTest, FramesAreUprightAndAtMost1280PixelsOnTheLongerSide)
{
    // Left half red, right half blue, tagged to be turned 90 degrees.
    ClipSpec split = previewClip(0.5, "color=c=red", 160, 90);
    split.filter = "drawbox=x=80:y=0:w=80:h=90:color=blue:t=fill";
    makeClip(root.file("split.mp4"), split);
    makeRotatedCopy(root.file("split.mp4"), root.file("turned.mp4"), 90);
    // ffmpeg's own upright rendering is the reference for which way is up.
    const ToolResult reference = runTool("ffmpeg", {"-v", "error", "-i", root.file("turned.mp4"), "-frames:v", "1",
                                                    "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    ASSERT_EQ(reference.out.size(), 90 * 160 * 3);
    const auto referenceRed = [&](int y) { return static_cast<unsigned char>(reference.out[(y * 90 + 45) * 3]); };
    ASSERT_GT(referenceRed(150), 200) << "ffmpeg shows red at the bottom";
    ASSERT_LT(referenceRed(10), 50);

    ASSERT_TRUE(load(QUrl::fromLocalFile(root.file("turned.mp4"))));
    auto frame = waitForFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(QSize(frame->width(), frame->height()), QSize(90, 160));
    EXPECT_GT(pixel(*frame, 45, 150).red(), 200);
    EXPECT_GT(pixel(*frame, 45, 10).blue(), 200);
    EXPECT_EQ(pixel(*frame, 45, 10).alpha(), 255);

    ASSERT_TRUE(load(clip("wide.mp4", previewClip(0.3, "testsrc2", 1600, 900))));
    frame = waitForFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(QSize(frame->width(), frame->height()), QSize(1280, 720));
}

TEST_F(PlayerTest, SeeksSuppressReportsUntilTheNewestSeekCompletes)
{
    ASSERT_TRUE(load(clip("clip.mp4", previewClip(3.0))));
    const int generation = player.seekGeneration();
    player.seek(std::nan(""), true);
    player.seek(INFINITY, false);
    EXPECT_EQ(player.seekGeneration(), generation);
    EXPECT_FALSE(player.ignoresTimeUpdates());

    std::vector<double> reports;
    std::vector<qint64> reportTimes;  // nanoseconds
    QElapsedTimer clock;
    clock.start();
    player.onTime = [&](double seconds) {
        reports.push_back(seconds);
        reportTimes.push_back(clock.nsecsElapsed());
    };
    player.play();
    ASSERT_TRUE(waitUntil([&] { return reports.size() >= 4; }));

    // Two quick seeks: nothing is reported until the second has landed, and
    // nothing from before it afterwards.
    player.seek(1.0, true);
    player.seek(2.0, true);
    EXPECT_TRUE(player.ignoresTimeUpdates());
    EXPECT_EQ(player.seekGeneration(), generation + 2);
    const std::size_t before = reports.size();
    ASSERT_TRUE(waitUntil([&] { return !player.ignoresTimeUpdates(); }));
    ASSERT_TRUE(waitUntil([&] { return reports.size() > before + 2; }));
    player.pause();
    for (std::size_t i = before; i < reports.size(); ++i)
        EXPECT_GE(reports[i], 2.0 - 1e-3) << "report " << i;
    for (std::size_t i = 1; i < reportTimes.size(); ++i)
        EXPECT_GE(reportTimes[i] - reportTimes[i - 1], ClipPreviewPlayer::reportIntervalNs - 1000000) << "at most 30 a second";

    // A precise seek lands on the frame; a tolerant one within 0.05 s, even
    // when the key frame before the target is further away.
    player.seek(1.5, true);
    ASSERT_TRUE(waitUntil([&] { return !player.ignoresTimeUpdates(); }));
    EXPECT_NEAR(player.position().value_or(-1), 1.5, 0.02);
    player.seek(2.55, false);
    ASSERT_TRUE(waitUntil([&] { return !player.ignoresTimeUpdates(); }));
    EXPECT_NEAR(player.position().value_or(-1), 2.55, ClipPreviewPlayer::seekTolerance + 1e-3);
}

TEST_F(PlayerTest, ReportsTheEndOncePerItem)
{
    int ended = 0;
    player.onEnded = [&] { ++ended; };
    const QUrl shortClip = clip("short.mp4", previewClip(0.4));
    ASSERT_TRUE(load(shortClip));
    player.play();
    ASSERT_TRUE(waitUntil([&] { return ended > 0; }));
    spinEventLoop(200);
    EXPECT_EQ(ended, 1);
    EXPECT_NEAR(player.position().value_or(-1), 0.4, 0.05) << "paused on the last frame";

    // The ended item is replaced: its end is not reported again.
    ASSERT_TRUE(load(shortClip));
    spinEventLoop(100);
    EXPECT_EQ(ended, 1);
}

// Loading and playing a clip leaves the terminal quiet on a machine without
// a decoding device (no driver library's complaints on standard error).
TEST_F(PlayerTest, LoadingSaysNothingOnStandardError)
{
    const QUrl video = clip("quiet.mp4", previewClip(0.5));
    const QString captured = root.file("stderr.txt");
    std::fflush(stderr);
    const int saved = dup(2);
    const int file = open(captured.toLocal8Bit().constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, 2);
    const bool loaded = load(video);
    const bool framed = waitForFrame() != nullptr;
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    close(file);
    ASSERT_TRUE(loaded && framed);
    QFile text(captured);
    ASSERT_TRUE(text.open(QIODevice::ReadOnly));
    EXPECT_EQ(text.readAll(), "");
}
