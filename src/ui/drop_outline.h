// The highlight a drop target shows while files hover over it: a rounded
// outline in the accent colour, inset from the edges of the widget it covers.
// It never takes mouse events.
//
// Main thread; a child widget that follows its parent's size.
#pragma once

#include <QWidget>

namespace tavrelune::ui {

class DropOutline : public QWidget {
    Q_OBJECT
public:
    explicit DropOutline(QWidget* target);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace tavrelune::ui
