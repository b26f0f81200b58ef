// Whole batches with the real ffmpeg on tiny generated clips.
#include "controller_fixture.h"
#include "grading/preview_grader.h"
#include "support/task_helpers.h"

#include <QStandardPaths>
#include <QTimer>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

const char* const identityCube =
    "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";
const char* const warmCube =
    "LUT_3D_SIZE 2\n0.1 0 0\n1 0 0\n0.1 1 0\n1 1 0\n0.1 0 1\n1 0 1\n0.1 1 1\n1 1 1\n";

double durationOf(const QString& path)
{
    return probeEntry(path, "duration", "format").toDouble();
}

// An ffmpeg that does its work, then keeps only the first 0.2 s of what it
// wrote (only when joining, if `joinOnly`), in the same file as ffmpeg
// itself rewrites its output.
QString shorteningFfmpeg(const QString& folder, bool joinOnly = false)
{
    const QString real = QStandardPaths::findExecutable("ffmpeg");
    return writeFakeTool(folder, "ffmpeg",
                         "\"" + real + "\" \"$@\" || exit $?\n"
                         + (joinOnly ? "case \" $* \" in *\" concat \"*) ;; *) exit 0;; esac\n" : "")
                         + "for last; do :; done\n"
                         "\"" + real + "\" -nostdin -v error -y -i \"$last\" -t 0.2 -c copy -f mp4 \"$last.cut\" "
                         "&& cat \"$last.cut\" > \"$last\" && rm \"$last.cut\"");
}

}  // namespace

TEST_F(ControllerTest, SeparateFilesAreNamedAfterTheirSourceAndNeverOverwritten)
{
    const QString a = clip("a.mov", {.seconds = 0.4});
    const QString b = clip("b.mp4", {.seconds = 0.4, .audio = false});
    addAndProbe({a, b});
    QStringList texts;
    QObject::connect(model.get(), &AppModel::statusMessageChanged, [&] { texts << model->statusMessage(); });

    convert();
    EXPECT_EQ(outputNames(), (QStringList{"a_graded.mp4", "b_graded.mp4"}));
    EXPECT_EQ(texts, (QStringList{QString("Converting a.mov") + QChar(0x2026),
                                  QString("Converting b.mp4") + QChar(0x2026),
                                  "Done: converted 2 clips."}));
    EXPECT_EQ(clipAt(0).status, ClipStatus::done);
    EXPECT_EQ(clipAt(1).outputURL, QUrl::fromLocalFile(outputFolder() + "/b_graded.mp4"));
    EXPECT_EQ(model->conversionFraction(), 1.0);
    EXPECT_FALSE(model->isConverting());

    EXPECT_FALSE(model->canConvert()) << "nothing changed since";
    convertAgain();
    convertAgain();
    EXPECT_EQ(outputNames(), (QStringList{"a_graded-2.mp4", "a_graded-3.mp4", "a_graded.mp4",
                                          "b_graded-2.mp4", "b_graded-3.mp4", "b_graded.mp4"}));
}

TEST_F(ControllerTest, SameBaseNameFromTwoFoldersGetsANumber)
{
    addAndProbe({clip("one/x.mov", {.seconds = 0.3}), clip("two/x.mp4", {.seconds = 0.3})});
    convert();
    EXPECT_EQ(outputNames(), (QStringList{"x_graded-2.mp4", "x_graded.mp4"}));
    EXPECT_EQ(clipAt(1).outputURL, QUrl::fromLocalFile(outputFolder() + "/x_graded-2.mp4"));
}

TEST_F(ControllerTest, OneClipWithCombineOnIsConvertedSeparately)
{
    addAndProbe({clip("solo.mov", {.seconds = 0.3})});
    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    model->setSettings(settings);
    convert();
    EXPECT_EQ(outputNames(), QStringList{"solo_graded.mp4"});
    EXPECT_EQ(model->statusMessage(), "Done: converted 1 clip.");
}

TEST_F(ControllerTest, CombinedBatchJoinsTrimmedPartsInOrder)
{
    addAndProbe({clip("p1.mov", {.width = 320, .height = 180, .seconds = 1.0}),
                 clip("p2.mp4", {.width = 160, .height = 90, .rate = "30", .seconds = 1.0, .audio = false}),
                 clip("p3.mkv", {.width = 320, .height = 180, .seconds = 1.0})});
    model->updateClip(clipAt(0).id, [](ClipItem& stored) { stored.inPoint = 0.4; });
    model->updateClip(clipAt(2).id, [](ClipItem& stored) { stored.outPoint = 0.6; });
    double expected = 0;
    for (const ClipItem& each : model->clips())
        expected += *each.trimmedDuration();

    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    settings.codec = VideoCodec::h264;
    model->setSettings(settings);
    // The user's own file of the list's name, and parts a crashed run left.
    const QString userList = root.write("out/tavrelune-concat.txt", "mine");
    root.write("out/.tavrelune-parts-0123456789abcdef/lock", "");
    root.write("out/.tavrelune-parts-0123456789abcdef/000.mp4", "stale");
    QStringList texts;
    QList<double> fractions;
    QObject::connect(model.get(), &AppModel::statusMessageChanged, [&] { texts << model->statusMessage(); });
    QObject::connect(model.get(), &AppModel::conversionFractionChanged, [&] { fractions << model->conversionFraction(); });
    convert();

    ASSERT_EQ(outputEntries(), QStringList({"Tavrelune_2025-03-07T14-05-09Z.mp4", "tavrelune-concat.txt"}))
        << "parts removed, stale ones too";
    QFile list(userList);
    ASSERT_TRUE(list.open(QIODevice::ReadOnly));
    EXPECT_EQ(list.readAll(), "mine");
    const QString combined = outputFolder() + "/Tavrelune_2025-03-07T14-05-09Z.mp4";
    EXPECT_NEAR(durationOf(combined), expected, 1.0 / 25 + 0.03);
    EXPECT_EQ(probeEntry(combined, "width"), "320");
    EXPECT_EQ(audioStreamCount(combined), 1) << "silence fills the part without audio";
    EXPECT_EQ(texts.size(), 5);
    EXPECT_TRUE(texts[0].startsWith("Preparing p1.mov"));
    EXPECT_EQ(texts[3], QString("Combining clips") + QChar(0x2026));
    EXPECT_EQ(texts[4], "Done: combined 3 clips into one video.");
    // Shares by length (0.6 s, 1 s, 0.6 s), then the join's twentieth.
    for (double step : {0.6 / 2.2 / 1.05, 1.6 / 2.2 / 1.05, 1.0 / 1.05, 1.0}) {
        EXPECT_TRUE(std::any_of(fractions.begin(), fractions.end(),
                                [step](double f) { return std::abs(f - step) < 1e-9; }))
            << step;
    }
    for (const ClipItem& each : model->clips()) {
        EXPECT_EQ(each.status, ClipStatus::done);
        EXPECT_EQ(each.outputURL, QUrl::fromLocalFile(combined));
    }
}

TEST_F(ControllerTest, AFailingClipEndsTheCombinedBatchAndAnUnreadableOneIsLeftOut)
{
    const QString vanishing = clip("good2.mov", {.seconds = 0.3});
    addAndProbe({clip("good1.mov", {.seconds = 0.3}), root.write("bad.mov", "not a movie"), vanishing,
                 clip("good3.mov", {.seconds = 0.3})});
    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    model->setSettings(settings);
    QFile::remove(vanishing);
    convert();

    EXPECT_EQ(clipAt(0).status, ClipStatus::ready) << "its part was made, never joined";
    EXPECT_EQ(clipAt(1).status, ClipStatus::ready) << "unreadable: never part of the batch";
    EXPECT_EQ(clipAt(2).status, ClipStatus::failed);
    EXPECT_EQ(clipAt(3).status, ClipStatus::ready) << "a join needs every part: the batch stops";
    EXPECT_TRUE(clipAt(2).errorMessage.value_or("").contains("No such file"));
    EXPECT_EQ(model->errorMessage(), *clipAt(2).errorMessage);
    EXPECT_EQ(model->statusMessage(), "Finished: 0 succeeded, 1 failed.");
    EXPECT_TRUE(outputNames().isEmpty());
    EXPECT_TRUE(outputEntries().isEmpty()) << "parts and claims removed";
}

TEST_F(ControllerTest, StoppingDuringAClipLeavesEveryClipReadyAndNoChild)
{
    addAndProbe({clip("long.mov", {.width = 640, .height = 360, .seconds = 20, .videoCodec = "libx264"}),
                 clip("next.mov", {.seconds = 0.3})});
    bool stopRequested = false;
    QObject::connect(model.get(), &AppModel::conversionFractionChanged, [&] {
        if (!stopRequested && model->conversionFraction() > 0) {
            stopRequested = true;
            QTimer::singleShot(0, model.get(), [this] { model->cancelConversion(); });
        }
    });
    convert();
    EXPECT_TRUE(stopRequested) << "progress was reported";
    EXPECT_EQ(model->statusMessage(), "Conversion stopped.");
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);
    EXPECT_EQ(clipAt(1).status, ClipStatus::ready);
    EXPECT_TRUE(model->errorMessage().isNull()) << "a stop is not a failure";
    EXPECT_FALSE(model->isConverting());
    EXPECT_TRUE(livingChildren().isEmpty());
    EXPECT_TRUE(QFile::exists(clipAt(0).url.toLocalFile())) << "the source is untouched";
    EXPECT_TRUE(outputEntries().isEmpty()) << "no half-written file or claim is left behind";
}

TEST_F(ControllerTest, LookUpTableIsStagedOnceAndAgainAfterANewChoice)
{
    const QString lut = root.write("looks/warm.CUBE", warmCube);
    addAndProbe({clip("a.mov", {.seconds = 0.3, .audio = false}), lut});
    convert();
    const QString staged = workspace() + "/active-lut.cube";
    QFile stagedFile(staged);
    ASSERT_TRUE(stagedFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(stagedFile.readAll(), QByteArray(warmCube));
    stagedFile.close();

    root.write("looks/warm.CUBE", identityCube);
    EXPECT_FALSE(model->canConvert()) << "a LUT edited in place is read when chosen again";
    convertAgain();
    ASSERT_TRUE(stagedFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(stagedFile.readAll(), QByteArray(warmCube)) << "the staged copy is reused";
    stagedFile.close();

    model->setLUT(QUrl::fromLocalFile(lut));  // the same file, chosen again
    convert();
    ASSERT_TRUE(stagedFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(stagedFile.readAll(), QByteArray(identityCube));
    EXPECT_EQ(model->statusMessage(), "Done: converted 1 clip.");
}

TEST_F(ControllerTest, ExportAppliesTheLookUpTableAsThePreviewShowsIt)
{
    // The preview reads the rows as covering 0…1 whatever the domain, and
    // skips a byte-order mark. ffmpeg would apply the 0…2 domain (mid-grey
    // half as bright), and fails to find a size line behind a mark.
    const QByteArray rows = QByteArray(identityCube).mid(QByteArray(identityCube).indexOf('\n') + 1);
    const QByteArray looks[] = {
        "TITLE \"wide\"\nLUT_3D_SIZE 2\nDOMAIN_MIN 0 0 0\nDOMAIN_MAX 2 2 2\n" + rows,
        "\xEF\xBB\xBFLUT_3D_SIZE 2\n" + rows,
    };
    const QString source = clip("grey.mov", {.seconds = 0.3, .audio = false, .pattern = "color=c=0x808080"});
    addAndProbe({source});
    const auto firstFrame = [this](const QString& video, const QString& name) {
        const QString frame = root.file(name);
        EXPECT_EQ(runTool("ffmpeg", {"-v", "error", "-i", video, "-frames:v", "1", "-y", frame}).exitCode, 0);
        return QImage(frame);
    };
    const QImage sourceFrame = firstFrame(source, "source.png");
    for (const QByteArray& look : looks) {
        SCOPED_TRACE(look.left(20).toStdString());
        const QString lut = root.write("look.cube", look);
        model->setLUT(QUrl::fromLocalFile(lut));
        convert();
        ASSERT_EQ(model->statusMessage(), "Done: converted 1 clip.") << model->errorMessage().toStdString();

        PreviewGrader preview;
        preview.setLUT(std::optional<QString>(lut));
        ASSERT_TRUE(preview.lut());
        preview.setSourceImage(sourceFrame);
        const QImage shown = *preview.render({});
        const QImage exported = firstFrame(clipAt(0).outputURL->toLocalFile(), "export.png");
        EXPECT_NEAR(qGray(exported.pixel(80, 45)), qGray(shown.pixel(80, 45)), 4);
    }
}

TEST_F(ControllerTest, BrokenLookUpTableStopsTheBatchWithTheLoadersMessage)
{
    const QString lut = root.write("short.cube", "LUT_3D_SIZE 2\n0 0 0\n");
    addAndProbe({clip("a.mov", {.seconds = 0.3, .audio = false}), lut});
    convert();
    EXPECT_EQ(model->statusMessage(), "Could not prepare the LUT.");
    EXPECT_EQ(model->errorMessage(), "The LUT data is incomplete.");
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);
    EXPECT_TRUE(outputNames().isEmpty());
}

TEST_F(ControllerTest, LookUpTableWhosePathFfmpegCannotEscapeExportsThroughTheStagedCopy)
{
    const QString lut = root.write("it's a:look\\v2.cube", warmCube);
    addAndProbe({clip("a.mov", {.seconds = 0.3, .audio = false}), lut});
    convert();
    EXPECT_EQ(model->statusMessage(), "Done: converted 1 clip.") << model->errorMessage().toStdString();
    EXPECT_EQ(clipAt(0).status, ClipStatus::done);
}

TEST_F(ControllerTest, UnreadableWatermarkStopsTheBatchBeforeTheFirstClip)
{
    const QString logo = root.file("logo.png");
    QImage(40, 20, QImage::Format_ARGB32).save(logo);
    addAndProbe({clip("a.mov", {.seconds = 0.3}), logo});
    ASSERT_TRUE(model->watermark().isEnabled());
    QFile::remove(logo);
    convert();
    EXPECT_EQ(model->statusMessage(), "Could not prepare the watermark.");
    EXPECT_EQ(model->errorMessage(), "Could not read the watermark image: the file does not exist.");
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);
    EXPECT_FALSE(model->isConverting());
    EXPECT_TRUE(outputNames().isEmpty());
}

TEST_F(ControllerTest, TheSlidersFollowTheClipTheBatchSelects)
{
    addAndProbe({clip("a.mov", {.seconds = 0.3, .audio = false}), clip("b.mov", {.seconds = 0.3, .audio = false})});
    model->updateClip(clipAt(1).id, [](ClipItem& stored) { stored.grade.exposure = -0.5; });
    model->liveGrade().setExposure(0.5);  // clip a, selected

    convert();
    ASSERT_EQ(model->selectedClipID(), clipAt(1).id);
    EXPECT_EQ(model->liveGrade().exposure(), -0.5);
    model->setSettings({.matchPreview = false});
    EXPECT_TRUE(model->plannedCommands().at(1).arguments.join(" ").contains("exposure=exposure=-0.5000"));

    convert();  // only a re-export: no clip is re-graded
    EXPECT_EQ(clipAt(0).grade.exposure, 0.5);
    EXPECT_EQ(clipAt(1).grade.exposure, -0.5);
}

TEST_F(ControllerTest, ConvertWaitsUntilAStoppedBatchHasWoundDown)
{
    // Like ffmpeg, it takes its time to finish up after SIGTERM.
    useToolsIn(writeFakeTool(root.file("tools"), "ffmpeg",
                             "trap 'sleep 1; exit 255' TERM; while true; do sleep 0.05; done"));
    addAndProbe({clip("a.mov", {.seconds = 0.3}), clip("b.mov", {.seconds = 0.3})});
    int ended = 0;
    QObject::connect(model.get(), &AppModel::batchEnded, [&ended] { ++ended; });

    model->startConversion();
    spinEventLoop(300);
    model->cancelConversion();
    EXPECT_FALSE(model->isConverting());
    EXPECT_FALSE(model->canConvert()) << "the stopped batch still winds down";
    model->startConversion();  // Convert at once: nothing starts
    waitForTask(model->conversionFinished());
    spinEventLoop(100);

    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(model->canConvert());
    EXPECT_FALSE(model->isConverting());
    EXPECT_EQ(model->statusMessage(), "Conversion stopped.");
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);
    EXPECT_TRUE(livingChildren().isEmpty());
}

TEST_F(ControllerTest, AnFfmpegKilledThatNobodyStoppedFailsItsClip)
{
    useToolsIn(writeFakeTool(root.file("tools"), "ffmpeg", "kill -KILL $$"));
    addAndProbe({clip("a.mov", {.seconds = 0.3}), clip("b.mov", {.seconds = 0.3})});
    convert();
    EXPECT_EQ(clipAt(0).status, ClipStatus::failed);
    EXPECT_EQ(clipAt(0).errorMessage, "ffmpeg ended unexpectedly (signal 9).");
    EXPECT_EQ(clipAt(1).status, ClipStatus::failed) << "the batch goes on to the next clip";
    EXPECT_EQ(model->errorMessage(), "ffmpeg ended unexpectedly (signal 9).");
    EXPECT_EQ(model->statusMessage(), "Finished: 0 succeeded, 2 failed.");
}

TEST_F(ControllerTest, ABatchThatWouldNotFitIsNotStarted)
{
    QStringList asked;
    int64_t available = 900'000;
    useFreeSpace([&](const QString& folder) {
        asked << folder;
        return std::optional(VolumeSpace{"/", available});
    });
    addAndProbe({clip("a.mov", {.seconds = 1.0}), clip("b.mov", {.seconds = 1.0})});
    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    model->setSettings(settings);
    const SizeForecast forecast = model->sizeForecast();
    ASSERT_GT(forecast.parts, 0);

    convert();
    EXPECT_EQ(asked, (QStringList{outputFolder(), outputFolder()})) << "the parts are made beside the outputs";
    EXPECT_TRUE(model->errorMessage().startsWith("Not enough free space for this batch in " + outputFolder()
                                                 + ": it needs about "))
        << model->errorMessage().toStdString();
    EXPECT_TRUE(model->errorMessage().endsWith(", and 900 kB is free."));
    EXPECT_FALSE(model->isConverting());
    EXPECT_TRUE(model->canConvert());
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);
    EXPECT_TRUE(outputNames().isEmpty());

    available = (forecast.outputBytes() + forecast.parts) * 21 / 20 + 1;  // with 5 % to spare
    convert();
    EXPECT_EQ(model->statusMessage(), "Done: combined 2 clips into one video.");
}

TEST_F(ControllerTest, PreviewMatchedBatchBakesOneTablePerGradeAndRemovesThem)
{
    const QString lut = root.write("looks/warm.cube", warmCube);
    addAndProbe({clip("a.mov", {.seconds = 0.3, .audio = false}), clip("b.mov", {.seconds = 0.3, .audio = false}),
                 clip("c.mov", {.seconds = 0.3, .audio = false}), lut});
    EncodeSettings settings = model->settings();
    settings.matchPreview = true;
    model->setSettings(settings);
    model->selectClip(clipAt(2).id);
    model->liveGrade().setTemperature(40);

    // The dry run names the tables; a and b share the neutral grade's.
    const std::vector<PlannedCommand> commands = model->plannedCommands();
    ASSERT_EQ(commands.size(), 3u);
    const auto cubeOf = [](const PlannedCommand& command) {
        const QString arguments = command.arguments.join(' ');
        const auto at = arguments.indexOf("lut3d=file=");
        return arguments.mid(at + 11, arguments.indexOf(':', at) - at - 11);
    };
    EXPECT_TRUE(cubeOf(commands[0]).startsWith(workspace() + "/preview-grade-"));
    EXPECT_EQ(cubeOf(commands[0]), cubeOf(commands[1]));
    EXPECT_NE(cubeOf(commands[0]), cubeOf(commands[2]));
    EXPECT_FALSE(QFile::exists(cubeOf(commands[0]))) << "a dry run writes nothing";

    // ffmpeg fails on a missing table, so success means both were baked.
    convert();
    EXPECT_EQ(model->statusMessage(), "Done: converted 3 clips.") << model->errorMessage().toStdString();
    EXPECT_TRUE(QDir(workspace()).entryList({"preview-grade-*.cube"}, QDir::Files).isEmpty());
    EXPECT_EQ(probeEntry(outputFolder() + "/a_graded.mp4", "color_space"), "smpte170m");

    // A LUT format the preview cannot read is left to the filter chain, and
    // the batch says so.
    root.write("looks/other.3dl", "0 512 1023\n0 0 0\n");
    model->setLUT(QUrl::fromLocalFile(root.file("looks/other.3dl")));
    const QString arguments = model->plannedCommands().at(0).arguments.join(' ');
    EXPECT_TRUE(arguments.contains("active-lut.3dl:interp=tetrahedral")) << arguments.toStdString();
    EXPECT_FALSE(arguments.contains("preview-grade-"));
    convert();
    EXPECT_TRUE(model->statusMessage().endsWith("The preview cannot show the LUT other.3dl, so the filter chain "
                                                "graded the clips."))
        << model->statusMessage().toStdString();
}

TEST_F(ControllerTest, AnOutputShorterThanItsClipFailsAndIsRemoved)
{
    useToolsIn(shorteningFfmpeg(root.file("tools")));
    addAndProbe({clip("a.mov", {.seconds = 1.0}), clip("b.mov", {.seconds = 1.0})});
    convert();
    // Cut by stream copy, the file ends at a packet boundary near 0.2 s.
    const std::string message = model->errorMessage().toStdString();
    EXPECT_TRUE(message.starts_with("Output check failed: expected 1.0 s, the file holds 0.")) << message;
    EXPECT_EQ(clipAt(0).status, ClipStatus::failed);
    EXPECT_EQ(clipAt(0).errorMessage.value_or("").toStdString(), message);
    EXPECT_EQ(clipAt(1).status, ClipStatus::failed) << "the batch goes on and fails it too";
    EXPECT_TRUE(outputEntries().isEmpty()) << "neither the file nor its claim is left: "
                                          << outputEntries().join(", ").toStdString();
}

TEST_F(ControllerTest, AJoinedFileShorterThanItsPartsFailsAndIsRemoved)
{
    useToolsIn(shorteningFfmpeg(root.file("tools"), true));
    addAndProbe({clip("a.mov", {.seconds = 1.0}), clip("b.mov", {.seconds = 1.0})});
    EncodeSettings settings = model->settings();
    settings.concatenateClips = true;
    model->setSettings(settings);
    convert();
    const std::string message = model->errorMessage().toStdString();
    // The parts as made, each a little over its clip's 1.0 s.
    EXPECT_TRUE(message.starts_with("Output check failed: expected 2.0 s, the file holds 0.")) << message;
    EXPECT_EQ(clipAt(1).status, ClipStatus::failed);
    EXPECT_EQ(clipAt(1).errorMessage.value_or("").toStdString(), message);
    EXPECT_TRUE(outputEntries().isEmpty()) << "no joined file, parts or claims left: "
                                          << outputEntries().join(", ").toStdString();
}
