#include "ui/main_window.h"

#include "controller/app_model.h"

#include <QStatusBar>

namespace tavrelune::ui {

MainWindow::MainWindow(AppModel& model, QWidget* parent) : QMainWindow(parent), model_(model)
{
    setWindowTitle(QStringLiteral("Tavrelune"));
    resize(1280, 800);
    // The status line follows the controller.
    connect(&model_, &AppModel::statusMessageChanged, this,
            [this] { statusBar()->showMessage(model_.statusMessage()); });
}

}  // namespace tavrelune::ui
