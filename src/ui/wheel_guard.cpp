#include "ui/wheel_guard.h"

#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QWheelEvent>

namespace tavrelune::ui {

WheelGuard::WheelGuard(QAbstractScrollArea& area) : QObject(&area), area_(area) {}

void WheelGuard::guardControlsIn(QWidget& root)
{
    for (QWidget* control : root.findChildren<QWidget*>()) {
        if (!qobject_cast<QComboBox*>(control) && !qobject_cast<QAbstractSpinBox*>(control)
            && !qobject_cast<QAbstractSlider*>(control))
            continue;
        // A wheel turn must not hand focus to the control it passes over.
        if (control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::StrongFocus);
        control->installEventFilter(this);
    }
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return false;
    const auto* control = qobject_cast<QWidget*>(watched);
    if (control && control->hasFocus())
        return false;
    QCoreApplication::sendEvent(area_.viewport(), event);
    return true;
}

}  // namespace tavrelune::ui
