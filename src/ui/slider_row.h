// A titled slider: a header line with the title and the formatted value,
// above a LiveSlider. setValue() shows a value from outside (the knob stays
// put while the user holds it; the number always follows).
//
// A double-click on the value opens it for typing: Return applies the
// number typed (units may be left out or kept; it is clamped to the range)
// as one edit of the slider, Escape or leaving the field keeps the value.
// `displayScale` is what the shown number is to the value (100 for a
// percentage shown of a fraction).
//
// Main thread; a plain widget.
#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QLineEdit;

namespace tavrelune::ui {

class LiveSlider;

class SliderRow : public QWidget {
    Q_OBJECT
public:
    using Format = std::function<QString(double)>;

    SliderRow(const QString& title, double minimum, double maximum, Format format, QWidget* parent = nullptr);

    void setValue(double value);
    void setDisplayScale(double scale) { displayScale_ = scale; }
    // Opens the value for typing, as a double-click on it does.
    void beginTyping();
    QLineEdit* valueEditor() const { return editor_; }
    // Adds a line right under the slider (e.g. the ends of its scale).
    void addFooter(QWidget* footer);
    LiveSlider* slider() const { return slider_; }
    QString valueText() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void endTyping(bool apply);

    Format format_;
    double displayScale_ = 1;
    double shown_ = 0;
    QLabel* value_;
    QLineEdit* editor_;
    LiveSlider* slider_;
};

}  // namespace tavrelune::ui
