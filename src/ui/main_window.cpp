#include "ui/main_window.h"

#include "controller/app_model.h"
#include "ui/clip_list_pane.h"
#include "ui/error_alert.h"
#include "ui/file_drop.h"
#include "ui/gesture_steps.h"
#include "ui/inspector.h"
#include "ui/main_menus.h"
#include "ui/preview_pane.h"
#include "ui/status_row.h"
#include "ui/trim_window.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

struct PaneWidths {
    int minimum;
    int ideal;
    int maximum;
};

constexpr PaneWidths clipListWidths{240, 280, 360};
constexpr PaneWidths previewWidths{460, 0, QWIDGETSIZE_MAX};
constexpr PaneWidths inspectorWidths{300, 330, 400};

void constrain(QWidget* pane, const PaneWidths& widths)
{
    pane->setMinimumWidth(widths.minimum);
    pane->setMaximumWidth(widths.maximum);
}

}  // namespace

MainWindow::MainWindow(AppModel& model, QWidget* parent)
    : QMainWindow(parent), model_(model), jobDocument_(model), editHistory_(model)
{
    setAcceptDrops(true);

    clipList_ = new ClipListPane(model_, &timeDisplay_);
    preview_ = new PreviewPane(model_, &timeDisplay_);
    inspector_ = new Inspector(model_);
    constrain(clipList_, clipListWidths);
    constrain(preview_, previewWidths);
    constrain(inspector_, inspectorWidths);

    splitter_ = new QSplitter(Qt::Horizontal);
    splitter_->setObjectName(QStringLiteral("panes"));
    splitter_->setChildrenCollapsible(false);
    splitter_->setHandleWidth(1);
    splitter_->addWidget(clipList_);
    splitter_->addWidget(preview_);
    splitter_->addWidget(inspector_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    splitter_->setStretchFactor(2, 0);
    splitter_->setSizes({clipListWidths.ideal,
                         defaultSize.width() - clipListWidths.ideal - inspectorWidths.ideal,
                         inspectorWidths.ideal});

    statusRow_ = new StatusRow(model_);
    auto* content = new QWidget;
    content->setMinimumSize(minimumContentSize);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(splitter_, 1);
    column->addWidget(statusRow_);
    setCentralWidget(content);

    menus_ = new MainMenus(model_, *this, timeDisplay_);
    connect(menus_->saveJob(), &QAction::triggered, &jobDocument_, &JobDocument::save);
    connect(menus_->saveJobAs(), &QAction::triggered, &jobDocument_, &JobDocument::saveAs);
    connect(menus_->openJob(), &QAction::triggered, this, [this] {
        if (settleUnsavedChanges())
            jobDocument_.chooseAndOpen();
    });
    connect(&jobDocument_, &JobDocument::pathChanged, this, &MainWindow::followJob);
    connect(&jobDocument_, &JobDocument::modifiedChanged, this, &MainWindow::followJob);
    connect(&jobDocument_, &JobDocument::recentJobsChanged, this, &MainWindow::fillRecentMenu);
    followJob();
    fillRecentMenu();

    new GestureSteps(editHistory_, this);
    connect(menus_->undo(), &QAction::triggered, &editHistory_, &EditHistory::undo);
    connect(menus_->redo(), &QAction::triggered, &editHistory_, &EditHistory::redo);
    const auto followHistory = [this] {
        menus_->undo()->setEnabled(editHistory_.canUndo());
        menus_->redo()->setEnabled(editHistory_.canRedo());
    };
    connect(&editHistory_, &EditHistory::changed, this, followHistory);
    connect(&jobDocument_, &JobDocument::opened, &editHistory_, &EditHistory::clear);
    followHistory();
    errorAlert_ = new ErrorAlert(model_, *this);
    connect(&model_, &AppModel::trimWindowTokenChanged, this, &MainWindow::openTrimWindow);
    resize(defaultSize.width(), defaultSize.height() + menuBar()->sizeHint().height());
}

MainWindow::~MainWindow() = default;

void MainWindow::followJob()
{
    const QString path = jobDocument_.path();
    setWindowTitle(path.isEmpty() ? QStringLiteral("Tavrelune[*]")
                                  : QFileInfo(path).fileName() + QStringLiteral("[*] \u2014 Tavrelune"));
    setWindowModified(jobDocument_.isModified());
}

void MainWindow::fillRecentMenu()
{
    QMenu* menu = menus_->openRecent();
    menu->clear();
    for (const QString& path : jobDocument_.recentJobs())
        connect(menu->addAction(path), &QAction::triggered, this, [this, path] { openJob(path); });
    menu->setEnabled(!menu->isEmpty());
}

void MainWindow::openJob(const QString& path)
{
    if (settleUnsavedChanges())
        jobDocument_.open(path);
}

bool MainWindow::settleUnsavedChanges()
{
    if (!jobDocument_.isModified())
        return true;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Save changes to this job?"),
                    QStringLiteral("Save changes to this job?"), QMessageBox::NoButton, this);
    box.setInformativeText(QStringLiteral("The clips, their grades and trims, the LUT, the watermark and the "
                                          "export settings are lost unless saved as a job."));
    box.setObjectName(QStringLiteral("saveChangesQuestion"));
    QPushButton* save = box.addButton(QStringLiteral("Save"), QMessageBox::AcceptRole);
    QPushButton* discard = box.addButton(QStringLiteral("Don\u2019t Save"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(save);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == save)
        return jobDocument_.save();
    return box.clickedButton() == discard;
}

void MainWindow::openTrimWindow()
{
    if (!trimWindow_) {
        trimWindow_ = new TrimWindow(model_, this, &timeDisplay_);
        trimWindow_->setGeometry(trimWindowPlace(trimWindow_->size()));
    }
    trimWindow_->present();
}

QRect MainWindow::trimWindowPlace(QSize size) const
{
    const QRect main = frameGeometry();
    const QRect screen = (this->screen() ? this->screen()->availableGeometry() : main.adjusted(-size.width(), 0, 0, 0));
    const int top = std::clamp(main.top(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - size.height()));
    const QRect right(QPoint(main.right() + 1, top), size);
    if (screen.contains(right))
        return right;
    const QRect left(QPoint(main.left() - size.width(), top), size);
    if (screen.contains(left))
        return left;
    // No room beside: over the right-hand panes, leaving the list in sight.
    const int listRight = clipList_->mapTo(this, QPoint(clipList_->width(), 0)).x() + geometry().left();
    const int x = std::clamp(std::max(listRight, screen.right() + 1 - size.width()), screen.left(),
                             std::max(screen.left(), screen.right() + 1 - size.width()));
    return {QPoint(x, top), size};
}

// Files dropped anywhere the panes do not take them themselves.
void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (FileDrop::carriesFiles(*event->mimeData()))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    model_.addURLs(FileDrop::urls(*event->mimeData()));
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!settleUnsavedChanges()) {
        event->ignore();
        return;
    }
    if (model_.isConverting()) {
        const QString whatHappens =
            model_.settings().concatenateClips && model_.clips().size() > 1
                ? QStringLiteral("A combined export is running. Quitting stops it; no video is written, "
                                 "and the parts made so far are removed.")
                : QStringLiteral("A conversion is running. Quitting stops it; clips already converted "
                                 "are kept, the one being converted is not.");
        QMessageBox box(QMessageBox::Question, QStringLiteral("Quit Tavrelune?"), whatHappens, QMessageBox::NoButton,
                        this);
        QPushButton* quit = box.addButton(QStringLiteral("Stop and Quit"), QMessageBox::DestructiveRole);
        QPushButton* keep = box.addButton(QStringLiteral("Keep Converting"), QMessageBox::RejectRole);
        box.setDefaultButton(keep);
        box.setEscapeButton(keep);
        box.exec();
        if (box.clickedButton() != quit) {
            event->ignore();
            return;
        }
        model_.cancelConversion();
    }
    if (trimWindow_)
        trimWindow_->close();
    event->accept();
}

}  // namespace tavrelune::ui
