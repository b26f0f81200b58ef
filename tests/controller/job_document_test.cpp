// Saving the window's batch as a job and opening it again, through the same
// reader the command line uses.
#include "controller_fixture.h"

#include "controller/job_application.h"
#include "controller/job_document.h"
#include "support/qt_printers.h"

#include <QImage>
#include <QSignalSpy>

using namespace tavrelune;
using namespace tavrelune::test;

TEST_F(ControllerTest, ASavedJobOpensAsItWasAndRunsOnTheCommandLine)
{
    const QString a = clip("a.mov", {.seconds = 1.0});
    const QString b = clip("b.mov", {.seconds = 1.0, .audio = false});
    const QString lut = root.write("Warm.cube", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    const QString logo = root.file("logo.png");
    QImage(40, 20, QImage::Format_ARGB32).save(logo);
    addAndProbe({a, b, lut, logo});
    model->updateClip(clipAt(1).id, [](ClipItem& clip) {
        clip.grade.exposure = 0.4;
        clip.grade.temperature = -20;
        clip.inPoint = 0.25;
        clip.outPoint = 0.75;
    });
    model->updateWatermarkLayout(0.1, 0.2, 0.3);
    model->setSettings({.codec = VideoCodec::h264, .quality = QualityPreset::small});

    JobDocument document(*model);
    QSignalSpy modified(&document, &JobDocument::modifiedChanged);
    EXPECT_TRUE(document.isModified()) << "a batch never saved";
    const QString path = root.file("Delivery.json");
    ASSERT_TRUE(document.saveTo(path));
    EXPECT_FALSE(document.isModified());
    EXPECT_EQ(document.path(), path);
    EXPECT_EQ(document.recentJobs(), QStringList{path});
    const ConvertJob saved = jobOf(*model);
    EXPECT_EQ(readConvertJob(path), saved);

    const ToolResult dryRun = runTool(TAVRELUNE_BINARY, {"convert", "--job", path, "--dry-run"});
    EXPECT_EQ(dryRun.exitCode, 0) << dryRun.err.toStdString();
    EXPECT_EQ(dryRun.out.count("# output: "), 2);

    // Changed, then opened again with one clip gone: the rest comes back.
    model->updateClip(clipAt(0).id, [](ClipItem& clip) { clip.grade.saturation = 0.5; });
    EXPECT_TRUE(document.isModified());
    model->clearWatermark();
    QFile::remove(a);
    waitForTask(document.open(path));
    ASSERT_EQ(model->clips().size(), 1);
    EXPECT_EQ(clipAt(0).url.toLocalFile(), b);
    EXPECT_EQ(clipAt(0).grade.exposure, 0.4);
    EXPECT_EQ(clipAt(0).effectiveOutPoint(), 0.75);
    EXPECT_EQ(model->lutURL().toLocalFile(), lut);
    EXPECT_EQ(model->watermark().widthFraction, 0.3);
    EXPECT_EQ(model->settings().codec, VideoCodec::h264);
    EXPECT_EQ(model->errorMessage(), "These files of the job are missing and were left out:\n" + a);
    EXPECT_FALSE(document.isModified());
    EXPECT_EQ(modified.count() % 2, 0) << "every change of the mark is signalled";
}

TEST_F(ControllerTest, AJobFileThatCannotBeReadLeavesTheBatchAlone)
{
    addAndProbe({clip("a.mov", {.seconds = 0.3})});
    JobDocument document(*model);
    waitForTask(document.open(root.write("bad.json", "{\"clips\": 3}")));
    EXPECT_EQ(model->errorMessage(), "Could not open bad.json: clips: expected a list");
    EXPECT_EQ(model->clips().size(), 1);
    EXPECT_TRUE(document.path().isEmpty());
}
