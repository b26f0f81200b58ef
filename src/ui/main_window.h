// The main window. It observes the controller and calls its operations; it
// owns no batch state of its own.
#pragma once

#include <QMainWindow>

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(AppModel& model, QWidget* parent = nullptr);

private:
    AppModel& model_;
};

}  // namespace tavrelune::ui
