// Makes each mouse gesture one undo step: from a button press anywhere in
// the application to the release of the last button, the edit history
// takes every change together (a slider drag, a watermark or trim handle
// dragged across the picture).
//
// Main thread. An application-wide event filter owned by the window; the
// history must outlive it.
#pragma once

#include <QObject>

namespace tavrelune {
class EditHistory;
}

namespace tavrelune::ui {

class GestureSteps : public QObject {
    Q_OBJECT
public:
    GestureSteps(EditHistory& history, QObject* parent);
    ~GestureSteps() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    EditHistory& history_;
    bool pressed_ = false;
};

}  // namespace tavrelune::ui
