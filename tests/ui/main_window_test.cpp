// The window's frame: menus, shortcuts, status row, error alert, drops and
// the "In & Out" window, on a real controller.
#include "window_fixture.h"

#include "ui/clip_list_pane.h"
#include "controller/job_file.h"
#include "ui/error_alert.h"
#include "ui/file_drop.h"
#include "ui/main_menus.h"
#include "ui/playback_bar.h"
#include "model/time_formatting.h"
#include "ui/status_row.h"
#include "ui/trim_window.h"

#include <QAction>
#include <QDropEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QTimer>
#include <QMenu>
#include <QApplication>
#include <QRegularExpression>
#include <QPushButton>
#include <QSplitter>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

struct MenuState {
    bool setInOut;
    QString playTitle;
    bool play;
    bool playAll;
    bool convertAll;
    bool stop;
};

MenuState menuState(const ui::MainMenus& menus)
{
    return {menus.setInOut()->isEnabled(), menus.playPause()->text(), menus.playPause()->isEnabled(),
            menus.playAll()->isEnabled(), menus.convertAll()->isEnabled(), menus.stop()->isEnabled()};
}

void expectMenus(const ui::MainMenus& menus, const MenuState& expected, const char* when)
{
    const MenuState actual = menuState(menus);
    EXPECT_EQ(actual.setInOut, expected.setInOut) << when;
    EXPECT_EQ(actual.playTitle, expected.playTitle) << when;
    EXPECT_EQ(actual.play, expected.play) << when;
    EXPECT_EQ(actual.playAll, expected.playAll) << when;
    EXPECT_EQ(actual.convertAll, expected.convertAll) << when;
    EXPECT_EQ(actual.stop, expected.stop) << when;
}

}  // namespace

TEST_F(WindowTest, OpensAtItsDefaultSizeWithThePanesInTheirLimits)
{
    EXPECT_EQ(window->windowTitle(), "Tavrelune[*]");
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(window->centralWidget()->size(), ui::MainWindow::defaultSize);
    EXPECT_EQ(window->centralWidget()->minimumSize(), ui::MainWindow::minimumContentSize);
    const QList<int> widths = window->splitter()->sizes();
    EXPECT_EQ(widths.first(), 280);
    EXPECT_EQ(widths.last(), 330);

    // Squeezed to the minimum, no pane goes below its own.
    window->resize(ui::MainWindow::minimumContentSize);
    QTest::qWait(50);
    const QList<int> squeezed = window->splitter()->sizes();
    EXPECT_GE(squeezed[0], 240);
    EXPECT_GE(squeezed[1], 460);
    EXPECT_GE(squeezed[2], 300);
}

TEST_F(WindowTest, MenusAreEnabledAndTitledFromTheState)
{
    const ui::MainMenus& menus = *window->menus();
    expectMenus(menus, {false, "Play", false, false, false, false}, "empty");

    addClips(2);
    ASSERT_TRUE(QTest::qWaitFor([this] { return model->clock().isPlayable(); }, 5000));
    expectMenus(menus, {true, "Play", true, true, true, false}, "the first clip playable");

    model->clock().setIsPlaying(true);
    expectMenus(menus, {true, "Pause", true, true, true, false}, "playing");
    model->clock().setIsPlaying(false);

    startConverting();
    expectMenus(menus, {false, "Play", false, false, false, true}, "converting");
    stopConverting();
    expectMenus(menus, {true, "Play", true, true, true, false}, "stopped");
}

TEST_F(WindowTest, ShortcutsReachTheirOperations)
{
    // Shortcuts go to the active window only.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const auto press = [this](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(window.get(), key, modifiers);
    };
    press(Qt::Key_O, Qt::ControlModifier);
    press(Qt::Key_L, Qt::ControlModifier);
    press(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
    QStringList asked;
    for (const ChooserRequest& request : desktop.requests)
        asked << request.message;
    EXPECT_EQ(asked, (QStringList{"Select video clips", "Select a LUT (.cube)", "Select a transparent PNG or SVG"}));

    addClips(1);
    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(model->trimWindowToken(), 1);
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(model->isConverting());
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_FALSE(model->isConverting());
    EXPECT_EQ(model->statusMessage(), "Conversion stopped.");
    waitForTask(model->conversionFinished());
}

TEST_F(WindowTest, SetInAndOutOpensOneWindowAndRaisesItAgain)
{
    addClips(1);
    EXPECT_EQ(window->trimWindow(), nullptr) << "nothing opens before it is asked for";
    window->menus()->setInOut()->trigger();
    ui::TrimWindow* first = window->trimWindow();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->windowTitle(), "In & Out");

    const QRect list(window->clipList()->mapToGlobal(QPoint(0, 0)), window->clipList()->size());
    EXPECT_FALSE(first->frameGeometry().intersects(list)) << "opened over the clip list";
    const QRect beside = window->trimWindowPlace(first->size());
    EXPECT_EQ(first->pos(), beside.topLeft());

    first->close();
    window->menus()->setInOut()->trigger();
    EXPECT_EQ(model->trimWindowToken(), 2);
    EXPECT_EQ(window->trimWindow(), first);
    EXPECT_TRUE(first->isVisible());
}

TEST_F(WindowTest, ShowTimecodeSwitchesEveryTimeToFramesAtTheClipsRate)
{
    addClips(1);
    const QLabel& time = *window->previewPane()->playbackBar()->time();
    const auto shows = [&](const char* pattern) {
        return QRegularExpression(QString("^%1 / %1$").arg(pattern)).match(time.text()).hasMatch();
    };
    const char* clock = "\\d:\\d\\d\\.\\d";
    const char* timecode = "\\d\\d:\\d\\d:\\d\\d:\\d\\d";
    EXPECT_TRUE(shows(clock)) << time.text().toStdString();
    window->menus()->showTimecode()->trigger();
    EXPECT_TRUE(shows(timecode)) << time.text().toStdString();
    const double fps = *clipAt(0).fps;
    EXPECT_TRUE(time.text().endsWith(" / " + TimeFormatting::timecode(1.0, fps)));
    model->updateInPoint(0.5, false);
    EXPECT_EQ(window->previewPane()->playbackBar()->trimLabel()->text(),
              TimeFormatting::timecode(0.5, fps) + " \u2013 " + TimeFormatting::timecode(1.0, fps));
    window->menus()->showTimecode()->trigger();
    EXPECT_TRUE(shows(clock)) << "and back to the clock: " << time.text().toStdString();
}

TEST_F(WindowTest, StatusRowShowsProgressWhileConvertingAndSummarisesTheBatch)
{
    const struct {
        qsizetype clips;
        QUrl lut;
        const char* summary;
    } cases[] = {
        {0, {}, "0 clips \u00B7 no LUT"},
        {1, {}, "1 clip \u00B7 no LUT"},
        {3, QUrl::fromLocalFile("/looks/Warm.cube"), "3 clips \u00B7 Warm.cube"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(ui::StatusRow::summary(each.clips, each.lut), QString::fromUtf8(each.summary));

    ui::StatusRow& row = *window->statusRow();
    EXPECT_EQ(row.summaryText(), QString::fromUtf8("0 clips \u00B7 no LUT"));
    EXPECT_FALSE(row.showsProgress());
    addClips(2);
    EXPECT_EQ(row.summaryText(), QString::fromUtf8("2 clips \u00B7 no LUT"));

    startConverting();
    EXPECT_TRUE(row.showsProgress());
    EXPECT_LE(row.progressBar()->maximumWidth(), 220);
    QTest::mouseClick(row.stopButton(), Qt::LeftButton);
    EXPECT_FALSE(model->isConverting());
    EXPECT_FALSE(row.showsProgress());
    EXPECT_EQ(row.statusText(), "Conversion stopped.");
    waitForTask(model->conversionFinished());
}

TEST_F(WindowTest, ErrorAlertFollowsTheMessageAndClearsItWhenDismissed)
{
    model->setErrorMessage("First problem");
    QMessageBox* box = window->errorAlert()->box();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "Error");
    EXPECT_EQ(box->text(), "First problem");
    model->setErrorMessage("Second problem");
    EXPECT_EQ(window->errorAlert()->box(), box) << "one alert, its text replaced";
    EXPECT_EQ(box->text(), "Second problem");

    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    EXPECT_TRUE(model->errorMessage().isEmpty());

    model->setErrorMessage("Third problem");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window->errorAlert()->box()));
    QTest::keyClick(window->errorAlert()->box(), Qt::Key_Escape);
    EXPECT_TRUE(model->errorMessage().isEmpty()) << "Escape dismisses too";

    model->setErrorMessage("Fourth problem");
    model->setErrorMessage(QString());
    QTest::qWait(20);
    EXPECT_EQ(window->errorAlert()->box(), nullptr) << "cleared elsewhere, the alert goes";
}

TEST_F(WindowTest, FilesDroppedOnTheWindowAreAddedInNameOrder)
{
    const QString ten = clip("clip10.mp4", {.seconds = 0.3});
    const QString two = clip("clip2.mp4", {.seconds = 0.3});
    const QString one = clip("Clip1.mp4", {.seconds = 0.3});
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(ten), QUrl("https://example.com/clip3.mp4"), QUrl::fromLocalFile(two),
                  QUrl::fromLocalFile(one)});
    // Dropped on the preview pane, which takes no drops of its own.
    QWidget* target = window->previewPane();
    const QPoint at = target->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    QStringList names;
    for (const ClipItem& each : model->clips())
        names << each.name;
    EXPECT_EQ(names, (QStringList{"Clip1.mp4", "clip2.mp4", "clip10.mp4"}));
    waitForTask(model->probesFinished());
}

TEST_F(WindowTest, SavingNamesTheWindowAndQuittingWithChangesAsksFirst)
{
    window->jobDocument().setDesktopServices(&desktop);
    addClips(1);
    EXPECT_TRUE(window->isWindowModified()) << "clips never saved";
    const QString path = root.file("Day one.json");
    desktop.answers << QStringList{path};
    window->menus()->saveJob()->trigger();
    EXPECT_EQ(desktop.requests.back().mode, ChooserRequest::Mode::saveFile);
    EXPECT_EQ(window->windowTitle(), QString("Day one.json[*] ") + QChar(0x2014) + " Tavrelune");
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(window->menus()->openRecent()->actions().size(), 1);

    model->updateClip(clipAt(0).id, [](ClipItem& clip) { clip.grade.exposure = 1; });
    EXPECT_TRUE(window->isWindowModified());
    const auto answerWith = [](const QString& button) {
        QTimer::singleShot(0, [button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->text(), "Save changes to this job?");
            for (QAbstractButton* each : box->buttons())
                if (each->text() == button)
                    each->click();
        });
    };
    answerWith("Cancel");
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    answerWith(QString("Don") + QChar(0x2019) + "t Save");
    EXPECT_TRUE(window->close());
    EXPECT_EQ(readConvertJob(path).clips.first().grade.exposure, 0.0) << "not saved";
}
