// The clip list pane on a real controller: header, selection, reordering,
// removal, context menus and file drops.
#include "window_fixture.h"

#include "ui/clip_list_model.h"
#include "ui/clip_list_pane.h"
#include "ui/insertion_line.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QToolButton>

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

QStringList titles(const QMenu& menu)
{
    QStringList result;
    // "&&" is how a menu shows one ampersand.
    for (const QAction* action : menu.actions())
        result << action->text().replace("&&", "&");
    return result;
}

}  // namespace

class ClipListPaneTest : public WindowTest {
protected:
    ui::ClipListPane& pane() { return *window->clipList(); }
    QListView& list() { return *pane().listView(); }
    QPoint rowCentre(int row) { return list().visualRect(list().model()->index(row, 0)).center(); }
};

TEST_F(ClipListPaneTest, HeaderShowsTheReorderHintFromTwoClipsAndRemovesOnlyASelection)
{
    auto* remove = pane().findChild<QToolButton*>("removeClipButton");
    const auto hintShown = [&] {
        for (auto* label : pane().findChildren<QLabel*>())
            if (label->text() == "Drag to reorder")
                return !label->isHidden();
        return false;
    };
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_TRUE(pane().findChild<QWidget*>("dropPlaceholder")->isVisible());

    addAndProbe({clip("one.mp4", {.seconds = 0.5})});
    EXPECT_FALSE(hintShown());
    EXPECT_TRUE(remove->isEnabled());
    EXPECT_TRUE(list().isVisible());
    addAndProbe({clip("two.mp4", {.seconds = 0.5})});
    EXPECT_TRUE(hintShown());

    startConverting();
    EXPECT_FALSE(remove->isEnabled());
    stopConverting();
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(names(model->clips()), QStringList{"two.mp4"});
}

TEST_F(ClipListPaneTest, SelectionFollowsClicksButEmptySpaceKeepsIt)
{
    addClips(3);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, rowCentre(2));
    EXPECT_EQ(model->selectedClipID(), clipAt(2).id);

    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, QPoint(20, list().viewport()->height() - 5));
    EXPECT_EQ(model->selectedClipID(), clipAt(2).id);
    EXPECT_EQ(list().selectionModel()->selectedIndexes().value(0).row(), 2);

    model->selectClip(clipAt(0).id);
    EXPECT_EQ(list().selectionModel()->selectedIndexes().value(0).row(), 0);
}

TEST_F(ClipListPaneTest, DraggedRowsMoveByOffsetsExceptWhileConverting)
{
    addClips(3);
    ui::ClipListModel& rows = *pane().listModel();
    const auto dragRow = [&](int row, int destination) {
        std::unique_ptr<QMimeData> data(rows.mimeData({rows.index(row)}));
        ASSERT_TRUE(rows.canDropMimeData(data.get(), Qt::MoveAction, destination, 0, {}));
        rows.dropMimeData(data.get(), Qt::MoveAction, destination, 0, {});
    };
    dragRow(0, 2);
    EXPECT_EQ(names(model->clips()), (QStringList{"clip2.mp4", "clip1.mp4", "clip3.mp4"}));
    dragRow(2, 0);
    EXPECT_EQ(names(model->clips()), (QStringList{"clip3.mp4", "clip2.mp4", "clip1.mp4"}));
    dragRow(1, -1);  // below the last row
    EXPECT_EQ(names(model->clips()), (QStringList{"clip3.mp4", "clip1.mp4", "clip2.mp4"}));
    EXPECT_EQ(rows.rowCount(), 3);

    startConverting();
    dragRow(0, 3);
    EXPECT_EQ(names(model->clips()), (QStringList{"clip3.mp4", "clip1.mp4", "clip2.mp4"}));
    stopConverting();
}

TEST_F(ClipListPaneTest, DeleteAndBackspaceRemoveTheSelectedClipWhenNotConverting)
{
    addClips(3);
    list().setFocus();
    model->selectClip(clipAt(1).id);
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(names(model->clips()), (QStringList{"clip1.mp4", "clip3.mp4"}));
    model->selectClip(clipAt(0).id);
    QTest::keyClick(&list(), Qt::Key_Backspace);
    EXPECT_EQ(names(model->clips()), QStringList{"clip3.mp4"});

    startConverting();
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(model->clips().size(), 1);
    stopConverting();
}

TEST_F(ClipListPaneTest, ContextMenuOffersTheFileManagerOnlyForADoneClip)
{
    addClips(2);
    const QString trim = QString("Set In & Out") + QChar(0x2026);
    const struct {
        ClipStatus status;
        QStringList items;
    } cases[] = {
        {ClipStatus::ready, {trim, "Remove"}},
        {ClipStatus::converting, {trim, "Remove"}},
        {ClipStatus::failed, {trim, "Remove"}},
        {ClipStatus::done, {trim, "Remove", "Show in File Manager"}},
    };
    const QString output = outputFolder() + "/clip2_graded.mp4";
    for (const auto& each : cases) {
        model->updateClip(clipAt(1).id, [&](ClipItem& clip) {
            clip.status = each.status;
            clip.outputURL = QUrl::fromLocalFile(output);
        });
        EXPECT_EQ(titles(*pane().contextMenuFor(clipAt(1).id)), each.items);
    }

    pane().contextMenuFor(clipAt(1).id)->actions().at(2)->trigger();
    EXPECT_EQ(desktop.shown, QStringList{outputFolder() + "|" + output});
    pane().contextMenuFor(clipAt(1).id)->actions().at(0)->trigger();
    EXPECT_EQ(model->selectedClipID(), clipAt(1).id);
    EXPECT_EQ(model->trimWindowToken(), 1);
    pane().contextMenuFor(clipAt(1).id)->actions().at(1)->trigger();
    EXPECT_EQ(names(model->clips()), QStringList{"clip1.mp4"});
}

TEST_F(ClipListPaneTest, FilesHoveringThePaneAreOutlinedAndDropsAreAdded)
{
    const QString file = clip("dropped.mp4", {.seconds = 0.3});
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    const QPoint at = pane().rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&pane(), &enter);
    EXPECT_TRUE(pane().isDropTargeted());
    QDragLeaveEvent leave;
    QApplication::sendEvent(&pane(), &leave);
    EXPECT_FALSE(pane().isDropTargeted());

    QApplication::sendEvent(&pane(), &enter);
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&pane(), &drop);
    EXPECT_FALSE(pane().isDropTargeted());
    EXPECT_EQ(names(model->clips()), QStringList{"dropped.mp4"});
    waitForTask(model->probesFinished());
}

TEST_F(ClipListPaneTest, DraggedRowsShowTheGapTheyWillLandIn)
{
    addClips(3);
    QMimeData rows;
    rows.setData(ui::ClipListModel::rowsMimeType, "0");
    QWidget* viewport = list().viewport();
    const QRect first = list().visualRect(list().model()->index(0, 0));
    const QPoint lowerHalf = first.center() + QPoint(0, first.height() / 4);
    QDragEnterEvent enter(lowerHalf, Qt::MoveAction, &rows, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &enter);
    const ui::InsertionLine& line = *pane().insertionLine();
    EXPECT_TRUE(line.isVisible());
    EXPECT_EQ(line.row(), 1);
    EXPECT_NEAR(line.geometry().center().y(), first.bottom() + 1, 2);

    const QPoint belowAll(first.center().x(), viewport->height() - 2);
    QDragMoveEvent move(belowAll, Qt::MoveAction, &rows, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &move);
    EXPECT_EQ(line.row(), 3) << "under the last row";
    QDragLeaveEvent leave;
    QApplication::sendEvent(viewport, &leave);
    EXPECT_FALSE(line.isVisible());
}
