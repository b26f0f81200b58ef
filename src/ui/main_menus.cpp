#include "ui/main_menus.h"

#include "controller/version_text.h"
#include "controller/app_model.h"
#include "ui/time_display.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>

namespace tavrelune::ui {

namespace {

QAction* addItem(QMenu* menu, const QString& title, const QKeySequence& shortcut = {})
{
    QAction* action = menu->addAction(title);
    action->setShortcut(shortcut);
    // Like a menu bar shared by all windows: the trim window takes them too.
    action->setShortcutContext(Qt::ApplicationShortcut);
    return action;
}

}  // namespace

MainMenus::MainMenus(AppModel& model, QMainWindow& window, TimeDisplay& times)
    : QObject(&window), model_(model), window_(window)
{
    const QString ellipsis(QChar(0x2026));
    QMenuBar* bar = window_.menuBar();

    QMenu* file = bar->addMenu(QStringLiteral("&File"));
    addClips_ = addItem(file, "Add Clips" + ellipsis, QKeySequence(Qt::CTRL | Qt::Key_O));
    file->addSeparator();
    // The window answers these: each may first ask about unsaved changes.
    openJob_ = addItem(file, "Open Job" + ellipsis, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O));
    openRecent_ = file->addMenu(QStringLiteral("Open Recent"));
    saveJob_ = addItem(file, QStringLiteral("Save Job"), QKeySequence(Qt::CTRL | Qt::Key_S));
    saveJobAs_ = addItem(file, "Save Job As" + ellipsis, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    file->addSeparator();
    chooseLUT_ = addItem(file, "Choose LUT" + ellipsis, QKeySequence(Qt::CTRL | Qt::Key_L));
    chooseWatermark_ = addItem(file, "Choose Watermark" + ellipsis, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W));
    file->addSeparator();
    quit_ = addItem(file, QStringLiteral("Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit_->setMenuRole(QAction::QuitRole);

    // The window answers these from its edit history.
    QMenu* editMenu = bar->addMenu(QStringLiteral("&Edit"));
    undo_ = addItem(editMenu, QStringLiteral("Undo"), QKeySequence(Qt::CTRL | Qt::Key_Z));
    redo_ = addItem(editMenu, QStringLiteral("Redo"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));

    QMenu* clip = bar->addMenu(QStringLiteral("&Clip"));
    setInOut_ = addItem(clip, "Set In && Out" + ellipsis, QKeySequence(Qt::CTRL | Qt::Key_T));

    QMenu* preview = bar->addMenu(QStringLiteral("&Preview"));
    playPause_ = addItem(preview, QStringLiteral("Play"));
    playAll_ = addItem(preview, QStringLiteral("Play All"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    preview->addSeparator();
    showTimecode_ = addItem(preview, QStringLiteral("Show Timecode"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    showTimecode_->setCheckable(true);
    showTimecode_->setChecked(times.style().timecode);
    connect(showTimecode_, &QAction::toggled, &times, &TimeDisplay::setTimecode);

    QMenu* exportMenu = bar->addMenu(QStringLiteral("&Export"));
    convertAll_ = addItem(exportMenu, QStringLiteral("Convert All"), QKeySequence(Qt::CTRL | Qt::Key_R));
    convertAllAgain_ = addItem(exportMenu, QStringLiteral("Convert All Again"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    stop_ = addItem(exportMenu, QStringLiteral("Stop"), QKeySequence(Qt::CTRL | Qt::Key_Period));

    QMenu* help = bar->addMenu(QStringLiteral("&Help"));
    about_ = addItem(help, QStringLiteral("About Tavrelune"));
    about_->setMenuRole(QAction::AboutRole);

    connect(addClips_, &QAction::triggered, &model_, &AppModel::chooseVideos);
    connect(chooseLUT_, &QAction::triggered, &model_, &AppModel::chooseLUT);
    connect(chooseWatermark_, &QAction::triggered, &model_, &AppModel::chooseWatermark);
    connect(quit_, &QAction::triggered, &window_, &QWidget::close);
    connect(setInOut_, &QAction::triggered, &model_, &AppModel::showTrimEditor);
    connect(playPause_, &QAction::triggered, this, &MainMenus::togglePlayback);
    connect(playAll_, &QAction::triggered, this, &MainMenus::togglePlayAll);
    connect(convertAll_, &QAction::triggered, &model_, &AppModel::startConversion);
    connect(convertAllAgain_, &QAction::triggered, &model_, &AppModel::convertAllAgain);
    connect(stop_, &QAction::triggered, &model_, &AppModel::cancelConversion);
    connect(about_, &QAction::triggered, this, &MainMenus::showAbout);

    connect(&model_, &AppModel::clipsChanged, this, &MainMenus::refresh);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &MainMenus::refresh);
    connect(&model_, &AppModel::isConvertingChanged, this, &MainMenus::refresh);
    connect(&model_, &AppModel::canConvertChanged, this, &MainMenus::refresh);
    connect(&model_, &AppModel::batchEnded, this, &MainMenus::refresh);
    connect(&model_, &AppModel::isPlayingAllChanged, this, &MainMenus::refresh);
    connect(&model_.clock(), &PreviewClock::isPlayingChanged, this, &MainMenus::refresh);
    connect(&model_.clock(), &PreviewClock::isPlayableChanged, this, &MainMenus::refresh);
    refresh();
}

void MainMenus::refresh()
{
    const bool converting = model_.isConverting();
    const PreviewClock& clock = model_.clock();
    setInOut_->setEnabled(model_.selectedClip().has_value() && !converting);
    playPause_->setText(clock.isPlaying() ? QStringLiteral("Pause") : QStringLiteral("Play"));
    playPause_->setEnabled(clock.isPlayable() && !converting);
    playAll_->setText(model_.isPlayingAll() ? QStringLiteral("Stop Play All") : QStringLiteral("Play All"));
    playAll_->setEnabled(!model_.clips().isEmpty() && !converting);
    convertAll_->setEnabled(model_.canConvert());
    convertAllAgain_->setEnabled(model_.canConvertAgain());
    stop_->setEnabled(converting);
}

void MainMenus::togglePlayback()
{
    if (model_.clock().isPlaying())
        model_.pausePlayback(true);
    else
        model_.startPlayback();
}

void MainMenus::togglePlayAll()
{
    if (model_.isPlayingAll())
        model_.pausePlayback(true);
    else
        model_.startPlayAll();
}

void MainMenus::showAbout()
{
    // What `tavrelune --version` prints, below the title.
    QStringList lines = versionText(model_.ffmpeg().binaryPath(QStringLiteral("ffmpeg")))
                            .trimmed()
                            .split('\n');
    lines.removeFirst();
    for (QString& line : lines)
        line = line.toHtmlEscaped();
    QMessageBox::about(
        &window_, QStringLiteral("About Tavrelune"),
        QStringLiteral("<p><b>Tavrelune %1</b></p>"
                       "<p>Prepares a batch of video clips for delivery: one LUT for the batch, a grade, "
                       "trim and watermark per clip, converted to MP4 by ffmpeg.</p>"
                       "<p>%2</p>")
            .arg(QStringLiteral(TAVRELUNE_VERSION), lines.join(QLatin1String("<br>"))));
}

}  // namespace tavrelune::ui
