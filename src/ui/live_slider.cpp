#include "ui/live_slider.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
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
    if (tracking_)
        QSlider::keyPressEvent(event);
    else
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
