#include "ui/live_slider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <algorithm>
#include <cmath>

namespace tavrelune::ui {

LiveSlider::LiveSlider(double minimum, double maximum, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), minimum_(minimum), maximum_(maximum)
{
    QSlider::setRange(0, steps);
    setSingleStep(steps / 100);
    setPageStep(steps / 10);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QSlider::valueChanged, this, &LiveSlider::reportPosition);
}

int LiveSlider::positionFor(double value) const
{
    if (!(maximum_ > minimum_))
        return 0;
    const double fraction = std::clamp((value - minimum_) / (maximum_ - minimum_), 0.0, 1.0);
    return static_cast<int>(std::lround(fraction * steps));
}

double LiveSlider::valueAt(int position) const
{
    return minimum_ + (maximum_ - minimum_) * position / steps;
}

double LiveSlider::value() const { return valueAt(QSlider::value()); }

void LiveSlider::setValue(double value)
{
    if (tracking_) {
        heldValue_ = value;
        return;
    }
    if (std::abs(this->value() - value) <= 0.0001)
        return;
    settingFromOutside_ = true;
    QSlider::setValue(positionFor(value));
    settingFromOutside_ = false;
}

void LiveSlider::setRange(double minimum, double maximum)
{
    const double current = value();
    minimum_ = minimum;
    maximum_ = maximum;
    settingFromOutside_ = true;
    QSlider::setValue(positionFor(current));
    settingFromOutside_ = false;
}

void LiveSlider::setStep(double unit)
{
    if (unit > 0)
        unit_ = unit;
}

void LiveSlider::editTo(double value)
{
    if (tracking_ || std::isnan(value))
        return;
    // The value itself is reported, not the knob position nearest to it, so
    // a typed 0.35 or a neutral 1.0 arrives exactly.
    const double target = std::clamp(value, minimum_, maximum_);
    settingFromOutside_ = true;
    QSlider::setValue(positionFor(target));
    settingFromOutside_ = false;
    Q_EMIT editingChanged(true);
    Q_EMIT valueEdited(target);
    Q_EMIT editingChanged(false);
}

std::optional<double> LiveSlider::stepTarget(int key) const
{
    int units = 0;
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Down: units = -1; break;
    case Qt::Key_Right:
    case Qt::Key_Up: units = 1; break;
    case Qt::Key_PageDown: units = -10; break;
    case Qt::Key_PageUp: units = 10; break;
    default: return std::nullopt;
    }
    // Steps land on the unit's grid (0.05 EV: 0.10, 0.15, …) whatever the
    // knob's position rounding left behind.
    const double moved = std::round((value() + units * *unit_) / *unit_) * *unit_;
    return std::clamp(moved, minimum_, maximum_);
}

void LiveSlider::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The press before it began a drag; it ends here, and this click puts
    // the control back where it starts out.
    if (event->button() == Qt::LeftButton && defaultValue_) {
        if (tracking_) {
            setSliderDown(false);
            endTracking();
        }
        editTo(*defaultValue_);
        event->accept();
        return;
    }
    QSlider::mouseDoubleClickEvent(event);
}

void LiveSlider::reportPosition(int position)
{
    if (!settingFromOutside_)
        Q_EMIT valueEdited(valueAt(position));
}

void LiveSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || tracking_) {
        QSlider::mousePressEvent(event);
        return;
    }
    tracking_ = true;
    heldValue_.reset();
    Q_EMIT editingChanged(true);

    // A press on the track moves the knob under the pointer first, so the
    // press continues as a drag of the knob (the style would page instead).
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const QPoint at = event->position().toPoint();
    if (!handle.contains(at)) {
        const QRect groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
        const int span = groove.width() - handle.width();
        const int offset = at.x() - groove.x() - handle.width() / 2;
        setSliderPosition(QStyle::sliderValueFromPosition(minimum(), maximum(), offset, span, option.upsideDown));
    }
    QSlider::mousePressEvent(event);
}

void LiveSlider::mouseReleaseEvent(QMouseEvent* event)
{
    QSlider::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && tracking_)
        endTracking();
}

// A held knob whose slider is disabled or hidden (a batch starting, a
// pane closing) never sees its release: the drag ends here, so whoever
// follows the edit is not left waiting for it.
void LiveSlider::changeEvent(QEvent* event)
{
    QSlider::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled() && tracking_) {
        setSliderDown(false);
        endTracking();
    }
}

void LiveSlider::hideEvent(QHideEvent* event)
{
    QSlider::hideEvent(event);
    if (tracking_) {
        setSliderDown(false);
        endTracking();
    }
}

void LiveSlider::endTracking()
{
    tracking_ = false;
    Q_EMIT editingChanged(false);
    if (const std::optional<double> held = std::exchange(heldValue_, std::nullopt))
        setValue(*held);
}

// Keys and the wheel make single steps: each is reported as a whole edit.
void LiveSlider::keyPressEvent(QKeyEvent* event)
{
    if (tracking_) {
        QSlider::keyPressEvent(event);
        return;
    }
    if (unit_) {
        if (const std::optional<double> target = stepTarget(event->key())) {
            if (std::abs(*target - value()) > 1e-9)
                editTo(*target);
            event->accept();
            return;
        }
    }
    moveAsOneEdit([this, event] { QSlider::keyPressEvent(event); });
}

void LiveSlider::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus() || tracking_)
        event->ignore();
    else
        moveAsOneEdit([this, event] { QSlider::wheelEvent(event); });
}

void LiveSlider::moveAsOneEdit(const std::function<void()>& move)
{
    const int before = QSlider::value();
    settingFromOutside_ = true;
    move();
    settingFromOutside_ = false;
    if (QSlider::value() == before)
        return;
    Q_EMIT editingChanged(true);
    Q_EMIT valueEdited(value());
    Q_EMIT editingChanged(false);
}

}  // namespace tavrelune::ui
