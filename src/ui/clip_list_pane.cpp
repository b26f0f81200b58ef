#include "ui/clip_list_pane.h"

#include "ui/time_display.h"
#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/clip_list_model.h"
#include "ui/clip_row_delegate.h"
#include "ui/drop_outline.h"
#include "ui/file_drop.h"
#include "ui/insertion_line.h"
#include "ui/icons.h"
#include "ui/spinner.h"

#include <QDragEnterEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrelune::ui {

ClipListPane::ClipListPane(AppModel& model, const TimeDisplay* times, QWidget* parent)
    : QWidget(parent), model_(model)
{
    setObjectName(QStringLiteral("clipListPane"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setAcceptDrops(true);

    listModel_ = new ClipListModel(model_, this);
    list_ = new QListView;
    list_->setObjectName(QStringLiteral("clipList"));
    list_->setModel(listModel_);
    list_->setItemDelegate(new ClipRowDelegate(list_, times));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setResizeMode(QListView::Adjust);
    list_->setUniformItemSizes(false);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setMouseTracking(true);
    list_->setSpacing(0);
    list_->setDragEnabled(true);
    list_->setAcceptDrops(true);
    list_->setDropIndicatorShown(false);  // the insertion line shows it
    insertionLine_ = new InsertionLine(*list_);
    list_->setDragDropMode(QAbstractItemView::DragDrop);
    list_->setDefaultDropAction(Qt::MoveAction);
    list_->setDragDropOverwriteMode(false);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->viewport()->installEventFilter(this);

    stack_ = new QStackedWidget;
    stack_->addWidget(makePlaceholder());
    stack_->addWidget(list_);

    auto* divider = new QFrame;
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    layout->addWidget(divider);
    layout->addWidget(stack_, 1);

    outline_ = new DropOutline(this);
    spinnerTimer_ = new QTimer(this);
    spinnerTimer_->setInterval(spinnerFrameMs);
    connect(spinnerTimer_, &QTimer::timeout, list_->viewport(), qOverload<>(&QWidget::update));

    list_->installEventFilter(this);
    connect(list_, &QListView::customContextMenuRequested, this, [this](const QPoint& at) {
        const QModelIndex index = list_->indexAt(at);
        if (!index.isValid())
            return;
        const std::unique_ptr<QMenu> menu = contextMenuFor(listModel_->idAt(index.row()));
        menu->exec(list_->viewport()->mapToGlobal(at));
    });
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ClipListPane::selectionChangedInView);
    connect(listModel_, &QAbstractItemModel::modelReset, this, &ClipListPane::followSelection);
    connect(&model_, &AppModel::clipsChanged, this, &ClipListPane::followClips);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &ClipListPane::followSelection);
    connect(&model_, &AppModel::isConvertingChanged, this, &ClipListPane::followConverting);
    followClips();
    followSelection();
}

ClipListPane::~ClipListPane() = default;

QWidget* ClipListPane::makeHeader()
{
    auto* header = new QWidget;
    header->setFixedHeight(appearance::paneHeaderHeight);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(14, 0, 10, 0);
    row->setSpacing(6);

    auto* title = new QLabel(QStringLiteral("Clips"));
    title->setFont(appearance::headline(font()));
    reorderHint_ = new QLabel(QStringLiteral("Drag to reorder"));
    reorderHint_->setFont(appearance::caption(font()));
    appearance::setTextColor(reorderHint_, appearance::tertiaryText(palette(), QPalette::Base));

    const QColor tint = palette().color(QPalette::WindowText);
    auto* addButton = new QToolButton;
    addButton->setObjectName(QStringLiteral("addClipsButton"));
    addButton->setIcon(icons::symbol(QStringLiteral("list-add"), tint));
    addButton->setToolTip(QStringLiteral("Add clips"));
    addButton->setAutoRaise(true);
    connect(addButton, &QToolButton::clicked, &model_, &AppModel::chooseVideos);

    removeButton_ = new QToolButton;
    removeButton_->setObjectName(QStringLiteral("removeClipButton"));
    removeButton_->setIcon(icons::symbol(QStringLiteral("list-remove"), tint));
    removeButton_->setToolTip(QStringLiteral("Remove selected clip"));
    removeButton_->setAutoRaise(true);
    connect(removeButton_, &QToolButton::clicked, &model_, &AppModel::removeSelected);

    row->addWidget(title);
    row->addStretch(1);
    row->addWidget(reorderHint_);
    row->addSpacing(4);
    row->addWidget(addButton);
    row->addWidget(removeButton_);
    return header;
}

QWidget* ClipListPane::makePlaceholder()
{
    auto* placeholder = new QWidget;
    placeholder->setObjectName(QStringLiteral("dropPlaceholder"));
    const QColor secondary = appearance::secondaryText(palette(), QPalette::Base);

    auto* symbol = new QLabel;
    symbol->setPixmap(icons::symbol(QStringLiteral("video-x-generic"), secondary).pixmap(48, 48));
    symbol->setAlignment(Qt::AlignCenter);
    auto* title = new QLabel(QStringLiteral("Drop video clips here"));
    title->setFont(appearance::headline(font()));
    title->setAlignment(Qt::AlignCenter);
    auto* hint = new QLabel(QStringLiteral("or click + to choose files"));
    hint->setFont(appearance::caption(font()));
    hint->setAlignment(Qt::AlignCenter);
    appearance::setTextColor(hint, secondary);

    auto* column = new QVBoxLayout(placeholder);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(10);
    column->addStretch(1);
    column->addWidget(symbol);
    column->addWidget(title);
    column->addWidget(hint);
    column->addStretch(1);
    return placeholder;
}

void ClipListPane::followClips()
{
    const QList<ClipItem>& clips = model_.clips();
    stack_->setCurrentIndex(clips.isEmpty() ? 0 : 1);
    reorderHint_->setVisible(clips.size() >= 2);
    const bool anyConverting = std::any_of(clips.begin(), clips.end(), [](const ClipItem& clip) {
        return clip.status == ClipStatus::converting;
    });
    if (anyConverting && !spinnerTimer_->isActive())
        spinnerTimer_->start();
    else if (!anyConverting)
        spinnerTimer_->stop();
    followConverting();
}

void ClipListPane::followConverting()
{
    removeButton_->setEnabled(!model_.selectedClipID().isNull() && !model_.isConverting());
}

void ClipListPane::followSelection()
{
    followingSelection_ = true;
    const int row = listModel_->rowOf(model_.selectedClipID());
    if (row >= 0) {
        const QModelIndex index = listModel_->index(row);
        list_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        list_->scrollTo(index);
    } else {
        list_->selectionModel()->clear();
    }
    followingSelection_ = false;
    followConverting();
}

void ClipListPane::selectionChangedInView()
{
    if (followingSelection_)
        return;
    const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
    if (selected.isEmpty()) {
        // Clicking empty space: the controller keeps its selection.
        followSelection();
        return;
    }
    const QUuid id = listModel_->idAt(selected.first().row());
    if (id != model_.selectedClipID())
        model_.selectClip(id);
}

void ClipListPane::removeSelectedRows()
{
    if (model_.isConverting())
        return;
    QList<int> rows;
    for (const QModelIndex& index : list_->selectionModel()->selectedIndexes())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    // Identities first: each removal renumbers the rows after it.
    QList<QUuid> ids;
    for (int row : rows)
        ids << listModel_->idAt(row);
    for (const QUuid& id : ids)
        model_.removeClip(id);
}

std::unique_ptr<QMenu> ClipListPane::contextMenuFor(const QUuid& id)
{
    auto menu = std::make_unique<QMenu>(this);
    const bool converting = model_.isConverting();
    QAction* trim = menu->addAction(QStringLiteral("Set In && Out\u2026"), this, [this, id] {
        model_.selectClip(id);
        model_.showTrimEditor();
    });
    trim->setEnabled(!converting);
    QAction* remove = menu->addAction(QStringLiteral("Remove"), this, [this, id] { model_.removeClip(id); });
    remove->setEnabled(!converting);
    const QList<ClipItem>& clips = model_.clips();
    const auto clip = std::find_if(clips.begin(), clips.end(), [&id](const ClipItem& c) { return c.id == id; });
    if (clip != clips.end() && clip->status == ClipStatus::done)
        menu->addAction(QStringLiteral("Show in File Manager"), this, [this, id] { model_.revealClipOutput(id); });
    return menu;
}

void ClipListPane::setTargeted(bool targeted)
{
    targeted_ = targeted;
    outline_->setVisible(targeted);
    outline_->raise();
}

void ClipListPane::dragEnterEvent(QDragEnterEvent* event)
{
    if (!FileDrop::carriesFiles(*event->mimeData()))
        return;
    event->acceptProposedAction();
    setTargeted(true);
}

void ClipListPane::dragLeaveEvent(QDragLeaveEvent*)
{
    setTargeted(false);
}

void ClipListPane::dropEvent(QDropEvent* event)
{
    setTargeted(false);
    event->acceptProposedAction();
    model_.addURLs(FileDrop::urls(*event->mimeData()));
}

// Delete and Backspace in the list remove the selected clip. The list
// handles drops over its rows itself; this only keeps the outline up while
// files hover there.
bool ClipListPane::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            removeSelectedRows();
            return true;
        }
    }
    if (watched == list_->viewport()) {
        if (event->type() == QEvent::DragEnter) {
            const auto* drag = static_cast<QDragEnterEvent*>(event);
            if (!drag->mimeData()->hasFormat(QString::fromLatin1(ClipListModel::rowsMimeType))
                && FileDrop::carriesFiles(*drag->mimeData()))
                setTargeted(true);
        } else if (event->type() == QEvent::DragLeave || event->type() == QEvent::Drop) {
            setTargeted(false);
            insertionLine_->hide();
        }
        if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove) {
            const auto* drag = static_cast<QDragMoveEvent*>(event);
            if (drag->mimeData()->hasFormat(QString::fromLatin1(ClipListModel::rowsMimeType)))
                insertionLine_->showAt(drag->position().toPoint());
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tavrelune::ui
