#include "ui/gesture_steps.h"

#include "controller/edit_history.h"

#include <QCoreApplication>
#include <QMouseEvent>

namespace tavrelune::ui {

GestureSteps::GestureSteps(EditHistory& history, QObject* parent) : QObject(parent), history_(history)
{
    QCoreApplication::instance()->installEventFilter(this);
}

GestureSteps::~GestureSteps()
{
    if (pressed_)
        history_.endGesture();
}

// A press travels up to parents that ignore it, so the same press is seen
// more than once: the state, not a count, marks the gesture.
bool GestureSteps::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress && !pressed_) {
        pressed_ = true;
        history_.beginGesture();
    } else if (event->type() == QEvent::MouseButtonRelease && pressed_
               && static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton) {
        pressed_ = false;
        history_.endGesture();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace tavrelune::ui
