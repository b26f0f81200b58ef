// The window's choices that survive a restart: the output folder, the export
// settings (codec, quality, combine, remove audio, match preview), the
// window's size and place, the widths of its panes, and the jobs opened or
// saved lately. Read into the
// controller and the window when made; written whenever a choice changes,
// and the window's shape when this object goes (the window closing).
//
// Main thread. The store is the application's QSettings (a file under the
// XDG config folder: ~/.config/tavrelune/tavrelune.conf); tests pass one of
// their own. The controller, window and store must outlive this object.
#pragma once

#include <QObject>

class QSettings;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class MainWindow;

class RememberedSettings : public QObject {
    Q_OBJECT
public:
    RememberedSettings(QSettings& store, AppModel& model, MainWindow& window);
    ~RememberedSettings() override;

    void saveWindowShape();

private:
    void restore();
    void saveChoices();

    QSettings& store_;
    AppModel& model_;
    MainWindow& window_;
};

}  // namespace tavrelune::ui
