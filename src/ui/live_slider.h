// A slider over a range of doubles that reports every movement at once and,
// separately, when the user's press begins and ends, so that costly work
// (storing a grade, refreshing stills) runs once per drag.
//
// Arrow keys move by setStep()'s unit onto its grid (a hundredth of the
// range until one is set), Page Up/Down by ten units. A double-click returns the slider to its
// setDefaultValue(), when one is given.
//
// The double range is mapped onto `steps` integer positions, fine enough to
// feel continuous. While the user holds the slider, values set from outside
// never move the knob; the latest one is applied when the press ends. A
// click on the track jumps the knob there and keeps dragging. Keyboard steps
// report a begin, the change and an end each. The wheel moves the slider
// only while it has focus, so scrolling a column of sliders scrolls the
// column.
//
// Main thread; a plain widget owned by its parent.
#pragma once

#include <QSlider>
#include <functional>
#include <optional>

namespace tavrelune::ui {

class LiveSlider : public QSlider {
    Q_OBJECT
public:
    static constexpr int steps = 10000;

    explicit LiveSlider(double minimum, double maximum, QWidget* parent = nullptr);

    double value() const;
    // Moves the knob unless the user holds it or it already shows `value`
    // (within 0.0001).
    void setValue(double value);
    void setRange(double minimum, double maximum);
    bool isTracking() const { return tracking_; }
    double minimumValue() const { return minimum_; }
    double maximumValue() const { return maximum_; }
    void setStep(double unit);
    void setDefaultValue(double value) { defaultValue_ = value; }
    // Moves to `value` (clamped to the range) as one whole user edit:
    // editingChanged(true), valueEdited, editingChanged(false).
    void editTo(double value);

Q_SIGNALS:
    // true when a press begins, false when it ends.
    void editingChanged(bool editing);
    // Every movement made by the user (never for setValue).
    void valueEdited(double value);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    int positionFor(double value) const;
    double valueAt(int position) const;
    void reportPosition(int position);
    void endTracking();
    void moveAsOneEdit(const std::function<void()>& move);
    std::optional<double> stepTarget(int key) const;

    double minimum_;
    double maximum_;
    bool tracking_ = false;
    bool settingFromOutside_ = false;
    std::optional<double> heldValue_;  // set from outside during a press
    std::optional<double> defaultValue_;
    std::optional<double> unit_;
};

}  // namespace tavrelune::ui
