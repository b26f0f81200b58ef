// The main window's menu bar: File (add clips, choose LUT and watermark,
// quit), Clip, Preview, Export and Help. Items are enabled and titled from
// the controller's state and re-evaluated whenever it changes; what an item
// does is decided by the state at the moment it is chosen.
//
// Main thread. Owned by the window; follows the controller, which must
// outlive it.
#pragma once

#include <QObject>

class QAction;
class QMenu;
class QMainWindow;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class TimeDisplay;

class MainMenus : public QObject {
    Q_OBJECT
public:
    MainMenus(AppModel& model, QMainWindow& window, TimeDisplay& times);

    QAction* addClips() const { return addClips_; }
    QAction* openJob() const { return openJob_; }
    QMenu* openRecent() const { return openRecent_; }
    QAction* saveJob() const { return saveJob_; }
    QAction* saveJobAs() const { return saveJobAs_; }
    QAction* chooseLUT() const { return chooseLUT_; }
    QAction* chooseWatermark() const { return chooseWatermark_; }
    QAction* quit() const { return quit_; }
    QAction* undo() const { return undo_; }
    QAction* redo() const { return redo_; }
    QAction* setInOut() const { return setInOut_; }
    QAction* playPause() const { return playPause_; }
    QAction* playAll() const { return playAll_; }
    QAction* showTimecode() const { return showTimecode_; }
    QAction* convertAll() const { return convertAll_; }
    QAction* convertAllAgain() const { return convertAllAgain_; }
    QAction* stop() const { return stop_; }
    QAction* about() const { return about_; }

private:
    void refresh();
    void togglePlayback();
    void togglePlayAll();
    void showAbout();

    AppModel& model_;
    QMainWindow& window_;
    QAction* addClips_;
    QAction* openJob_;
    QMenu* openRecent_;
    QAction* saveJob_;
    QAction* saveJobAs_;
    QAction* chooseLUT_;
    QAction* chooseWatermark_;
    QAction* quit_;
    QAction* undo_;
    QAction* redo_;
    QAction* setInOut_;
    QAction* playPause_;
    QAction* playAll_;
    QAction* showTimecode_;
    QAction* convertAll_;
    QAction* convertAllAgain_;
    QAction* stop_;
    QAction* about_;
};

}  // namespace tavrelune::ui
