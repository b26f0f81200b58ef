// Keeps the mouse wheel for scrolling: a list, spin box or slider that the
// pointer merely passes over while the user scrolls a column does not change
// its value. Only a control that has keyboard focus (the user clicked or
// tabbed to it) takes the wheel; otherwise the wheel scrolls `area`.
//
// Main thread. The guard is a child of `area`; guarded controls must be
// inside it.
#pragma once

#include <QObject>

class QAbstractScrollArea;
class QWidget;

namespace tavrelune::ui {

class WheelGuard : public QObject {
    Q_OBJECT
public:
    explicit WheelGuard(QAbstractScrollArea& area);

    // Guards every value control under `root` (lists, spin boxes, sliders).
    void guardControlsIn(QWidget& root);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractScrollArea& area_;
};

}  // namespace tavrelune::ui
