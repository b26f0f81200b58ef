// The left pane: the batch as a list of clip rows with its header (title,
// reorder hint, add and remove buttons), or a drop placeholder while the
// batch is empty.
//
// The list shows and sets the controller's selection (clearing it in the
// view leaves the controller's selection alone); rows are reordered by
// dragging; Delete and Backspace remove the selected clip; each row has a
// context menu. Files dropped anywhere on the pane are added, with an
// outline drawn while they hover.
//
// Main thread. Does not own the controller, which must outlive it.
#pragma once

#include <QUuid>
#include <QWidget>
#include <memory>

class QLabel;
class QListView;
class QMenu;
class QStackedWidget;
class QTimer;
class QToolButton;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class ClipListModel;
class TimeDisplay;
class DropOutline;
class InsertionLine;

class ClipListPane : public QWidget {
    Q_OBJECT
public:
    explicit ClipListPane(AppModel& model, const TimeDisplay* times = nullptr, QWidget* parent = nullptr);
    ~ClipListPane() override;

    InsertionLine* insertionLine() const { return insertionLine_; }

    // The menu a right click on this clip's row opens.
    std::unique_ptr<QMenu> contextMenuFor(const QUuid& id);

    QListView* listView() const { return list_; }
    ClipListModel* listModel() const { return listModel_; }
    bool isDropTargeted() const { return targeted_; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makePlaceholder();
    void followClips();
    void followConverting();
    void followSelection();
    void selectionChangedInView();
    void removeSelectedRows();
    void setTargeted(bool targeted);

    AppModel& model_;
    ClipListModel* listModel_ = nullptr;
    QListView* list_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    QLabel* reorderHint_ = nullptr;
    QToolButton* removeButton_ = nullptr;
    DropOutline* outline_ = nullptr;
    InsertionLine* insertionLine_ = nullptr;
    QTimer* spinnerTimer_ = nullptr;
    bool followingSelection_ = false;
    bool targeted_ = false;
};

}  // namespace tavrelune::ui
