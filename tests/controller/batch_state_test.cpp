// What a running batch works on, and what the list does around it.
#include "controller_fixture.h"

#include <QImage>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

const char* const invertingCube =
    "LUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 0\n1 0 0\n0 0 0\n";

// The mean grey of a file's frame at `seconds`, 0 to 255.
int brightnessAt(const QString& path, double seconds)
{
    const QByteArray pixel = runTool("ffmpeg", {"-v", "error", "-ss", QString::number(seconds), "-i", path,
                                                "-frames:v", "1", "-vf", "scale=1:1:flags=area,format=gray", "-f",
                                                "rawvideo", "-"})
                                 .out;
    return pixel.isEmpty() ? -1 : int(std::uint8_t(pixel[0]));
}

}  // namespace

// A clip and a LUT dropped while the first part is made: the batch joins
// the two clips it planned, graded as they were at its start; the new clip
// waits, and the list keeps every clip until the batch ends.
TEST_F(ControllerTest, ABatchWorksOnWhatItPlannedAtItsStart)
{
    const ClipSpec black{.width = 160, .height = 90, .seconds = 0.6, .audio = false, .pattern = "color"};
    addAndProbe({clip("a.mov", black), clip("b.mov", black)});
    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    model->setSettings(settings);
    model->startConversion();
    ASSERT_TRUE(model->statusMessage().startsWith("Preparing a.mov"));
    model->addURLs(urls({clip("late.mov", black), root.write("invert.cube", invertingCube)}));
    model->removeClip(clipAt(0).id);
    waitForTask(model->conversionFinished());
    waitForTask(model->probesFinished());

    EXPECT_EQ(model->statusMessage(), "Done: combined 2 clips into one video.");
    ASSERT_EQ(model->clips().size(), 3);
    EXPECT_EQ(clipAt(0).status, ClipStatus::done);
    EXPECT_EQ(clipAt(1).status, ClipStatus::done);
    EXPECT_EQ(clipAt(2).status, ClipStatus::ready);
    const QString combined = outputFolder() + "/Tavrelune_2025-03-07T14-05-09Z.mp4";
    EXPECT_NEAR(probeEntry(combined, "duration").toDouble(), 1.2, 0.001);
    EXPECT_LT(brightnessAt(combined, 0.9), 40) << "the LUT dropped meanwhile is not in the second part";
    EXPECT_TRUE(model->lutURL().isValid()) << "but it is chosen for the next batch";
}

// Removing the clip being probed must not skip the one after it.
TEST_F(ControllerTest, ProbingFollowsClipsNotPositions)
{
    const ClipSpec small{.seconds = 0.3, .audio = false};
    model->addURLs(urls({clip("1.mov", small), clip("2.mov", small), clip("3.mov", small)}));
    model->removeClip(clipAt(0).id);
    waitForTask(model->probesFinished());
    ASSERT_EQ(model->clips().size(), 2);
    for (const ClipItem& each : model->clips())
        EXPECT_TRUE(each.duration.has_value()) << each.name.toStdString();
}

// A file that cannot be read says why in one line, with no preview.
TEST_F(ControllerTest, AnUnreadableClipGivesOneLineReason)
{
    addAndProbe({root.write("broken.mov", QByteArray(4000, 'x'))});
    EXPECT_EQ(clipAt(0).readError, "Invalid data found when processing input (moov atom not found)");
    EXPECT_FALSE(model->statusMessage().contains("@ 0x"));
    EXPECT_FALSE(model->clock().isPlayable());
}

// A portrait clip and a logo given together: the logo goes bottom right of
// the portrait picture once its shape is known, not where 16:9 would put it.
TEST_F(ControllerTest, ADefaultWatermarkFollowsTheShapeOfTheClipGivenWithIt)
{
    QImage square(64, 64, QImage::Format_ARGB32);
    square.fill(Qt::white);
    ASSERT_TRUE(square.save(root.file("logo.png")));
    addAndProbe({clip("tall.mov", {.width = 90, .height = 160, .seconds = 0.3, .audio = false}),
                 root.file("logo.png")});
    EXPECT_NEAR(model->watermark().y, 1 - 0.18 * 90 / 160 - 0.04, 1e-9);
}
