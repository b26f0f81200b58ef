// The main window.
#pragma once

#include <QMainWindow>

namespace tavrelune::ui {

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
};

}  // namespace tavrelune::ui
