// Adding, probing, selecting and removing clips on a real controller.
#include "controller_fixture.h"

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

QStringList names(const QList<ClipItem>& clips)
{
    QStringList result;
    for (const ClipItem& clip : clips)
        result << clip.name;
    return result;
}

}  // namespace

TEST_F(ControllerTest, AddingRoutesFilesByExtensionAndSkipsDuplicates)
{
    const QString first = clip("day/A001.MOV");
    const QString second = clip("day/A002.mp4", {.audio = false});
    const QString lut = root.write("look.CUBE", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    const QString notes = root.write("notes.txt", "ignored");

    addAndProbe({lut, first, notes, second, root.path() + "/day/../day/A001.MOV"});
    EXPECT_EQ(names(model->clips()), (QStringList{"A001.MOV", "A002.mp4"}));
    EXPECT_EQ(model->lutURL(), QUrl::fromLocalFile(lut));
    EXPECT_EQ(model->selectedClipID(), clipAt(0).id) << "the first clip is selected";

    const ClipItem probed = clipAt(1);
    EXPECT_EQ(probed.width, 160);
    EXPECT_EQ(probed.height, 90);
    EXPECT_EQ(probed.codecName, QString("h264"));
    EXPECT_EQ(probed.fps, 25.0);
    EXPECT_FALSE(probed.hasAudio);
    EXPECT_NEAR(probed.duration.value_or(0), 1.0, 0.1);
    EXPECT_TRUE(clipAt(0).hasAudio);

    // An empty addition keeps everything; a later addition keeps the selection.
    model->selectClip(clipAt(1).id);
    addAndProbe({});
    addAndProbe({clip("A003.mkv")});
    EXPECT_EQ(model->clips().size(), 3);
    EXPECT_EQ(model->selectedClipID(), clipAt(1).id);
}

TEST_F(ControllerTest, UnreadableClipKeepsItsErrorAndIsProbedAgainLater)
{
    const QString broken = root.write("broken.mov", "not a movie");
    addAndProbe({broken});
    EXPECT_FALSE(clipAt(0).duration);
    EXPECT_TRUE(clipAt(0).readError.value_or("").contains("Invalid data"));
    EXPECT_EQ(clipAt(0).status, ClipStatus::ready);

    // Repaired on disk: the next addition's pass probes it again.
    QFile::remove(broken);
    makeClip(broken, {.seconds = 0.5});
    addAndProbe({});
    EXPECT_NEAR(clipAt(0).duration.value_or(0), 0.5, 0.1);
    EXPECT_FALSE(clipAt(0).readError);
}

TEST_F(ControllerTest, ProbeClampsTrimPointsToTheRealDuration)
{
    const QString shortClip = clip("short.mp4", {.seconds = 1.0, .audio = false});
    model->addURLs(urls({shortClip}));
    model->updateClip(clipAt(0).id, [](ClipItem& stored) {
        stored.inPoint = 10;
        stored.outPoint = 30;
    });
    waitForTask(model->probesFinished());
    const double duration = *clipAt(0).duration;
    EXPECT_DOUBLE_EQ(*clipAt(0).outPoint, duration);
    EXPECT_DOUBLE_EQ(clipAt(0).inPoint, duration - 0.12);
}

TEST_F(ControllerTest, RemovalMovesTheSelectionByTheRules)
{
    const QString a = root.write("a.mov", "x");
    const QString b = root.write("b.mov", "x");
    const QString c = root.write("c.mov", "x");
    addAndProbe({a, b, c});
    const QUuid idA = clipAt(0).id, idB = clipAt(1).id, idC = clipAt(2).id;

    model->selectClip(idB);
    model->removeSelected();  // the middle: its follower is selected
    EXPECT_EQ(model->selectedClipID(), idC);
    model->removeSelected();  // the last: the new last is selected
    EXPECT_EQ(model->selectedClipID(), idA);

    addAndProbe({b, c});
    const QUuid newB = clipAt(1).id;
    model->selectClip(newB);
    model->removeClip(idA);  // not selected: the selection stays
    EXPECT_EQ(model->selectedClipID(), newB);
    model->removeClip(newB);  // selected, by identifier: the first clip
    EXPECT_EQ(model->selectedClipID(), clipAt(0).id);
    model->removeSelected();
    EXPECT_TRUE(model->clips().isEmpty());
    EXPECT_TRUE(model->selectedClipID().isNull());
    model->removeSelected();  // nothing selected: nothing happens
}

TEST_F(ControllerTest, CanConvertNeedsClipsAFolderAndNoRunningBatch)
{
    QSignalSpy changes(model.get(), &AppModel::canConvertChanged);
    EXPECT_FALSE(model->canConvert());
    addAndProbe({root.write("a.mov", "x")});
    EXPECT_FALSE(model->canConvert()) << "an unreadable clip writes nothing";
    addAndProbe({clip("b.mov", {.seconds = 0.3})});
    EXPECT_TRUE(model->canConvert());
    model->setOutputFolder(QUrl());
    EXPECT_FALSE(model->canConvert());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ControllerTest, SliderValuesAreCommittedToTheClipTheyBelongTo)
{
    addAndProbe({root.write("a.mov", "x"), root.write("b.mov", "x"), root.write("c.mov", "x")});
    model->liveGrade().setExposure(0.7);
    model->liveGrade().setTemperature(-40);
    model->selectClip(clipAt(1).id);
    EXPECT_EQ(clipAt(0).grade.exposure, 0.7);
    EXPECT_EQ(clipAt(0).grade.temperature, -40);
    EXPECT_EQ(model->liveGrade().exposure(), 0) << "the newly selected clip's own values";

    model->liveGrade().setSaturation(1.4);
    model->selectClip(clipAt(0).id);
    EXPECT_EQ(model->liveGrade().exposure(), 0.7) << "selecting it again shows the stored value";
    EXPECT_EQ(clipAt(1).grade.saturation, 1.4);

    model->selectClip(clipAt(1).id);
    model->applyAdjustmentsToAll();
    for (const ClipItem& each : model->clips()) {
        EXPECT_EQ(each.grade.saturation, 1.4);
        EXPECT_EQ(each.grade.exposure, 0);
    }
    EXPECT_EQ(model->statusMessage(), "Adjustments applied to all clips.");

    model->selectClip(clipAt(2).id);
    model->liveGrade().setContrast(1.8);
    model->resetAdjustments();
    EXPECT_EQ(clipAt(2).grade.contrast, 1);
    EXPECT_EQ(clipAt(2).grade.saturation, 1);
    EXPECT_EQ(clipAt(0).grade.saturation, 1.4) << "other clips keep their grade";
}

TEST_F(ControllerTest, ChoosersAskWithTheirMessagesAndCancellingChangesNothing)
{
    const QString a = root.write("a.mov", "x");
    const QString readme = root.write("readme.md", "x");
    desktop.answers = {{a, readme}, {}, {root.path()}};
    model->chooseVideos();
    model->chooseLUT();
    model->chooseOutputFolder();
    waitForTask(model->probesFinished());

    ASSERT_EQ(desktop.requests.size(), 3);
    EXPECT_EQ(desktop.requests[0].mode, ChooserRequest::Mode::manyFiles);
    EXPECT_EQ(desktop.requests[0].message, "Select video clips");
    EXPECT_EQ(desktop.requests[1].message, "Select a LUT (.cube)");
    EXPECT_TRUE(desktop.requests[1].extensions.contains("cube"));
    EXPECT_EQ(desktop.requests[2].mode, ChooserRequest::Mode::folder);
    EXPECT_EQ(desktop.requests[2].message, "Folder for converted clips");
    EXPECT_EQ(desktop.requests[2].confirmLabel, "Choose");

    EXPECT_EQ(names(model->clips()), QStringList{"a.mov"}) << "non-videos are filtered again";
    EXPECT_TRUE(model->lutURL().isEmpty()) << "cancelled";
    EXPECT_EQ(model->outputFolder(), QUrl::fromLocalFile(root.path()));

    model->revealOutput();
    EXPECT_EQ(desktop.shown, QStringList{root.path() + "|"});
}

TEST_F(ControllerTest, MovingClipsFollowsTheMoveByOffsetsRule)
{
    addAndProbe({root.write("a.mov", "x"), root.write("b.mov", "x"), root.write("c.mov", "x"),
                 root.write("d.mov", "x")});
    // Each move starts from the order the previous one left.
    struct Case {
        QList<int> rows;
        int destination;
        QStringList expected;
    };
    const Case cases[] = {
        {{0}, 2, {"b.mov", "a.mov", "c.mov", "d.mov"}},
        {{3}, 0, {"d.mov", "b.mov", "a.mov", "c.mov"}},
        {{0, 2}, 4, {"b.mov", "c.mov", "d.mov", "a.mov"}},
        {{3, 1}, 1, {"b.mov", "c.mov", "a.mov", "d.mov"}},
        {{1}, 1, {"b.mov", "c.mov", "a.mov", "d.mov"}},
        {{1}, 9, {"b.mov", "c.mov", "a.mov", "d.mov"}},
    };
    for (const Case& each : cases) {
        model->moveClips(each.rows, each.destination);
        EXPECT_EQ(names(model->clips()), each.expected) << each.rows.first() << " to " << each.destination;
    }
}
