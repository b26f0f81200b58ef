#include "ui/main_window.h"

namespace tavrelune::ui {

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Tavrelune"));
    resize(1280, 800);
}

}  // namespace tavrelune::ui
