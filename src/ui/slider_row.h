// A titled slider: a header line with the title and the formatted value,
// above a LiveSlider. setValue() shows a value from outside (the knob stays
// put while the user holds it; the number always follows).
//
// Main thread; a plain widget.
#pragma once

#include <QWidget>
#include <functional>

class QLabel;

namespace tavrelune::ui {

class LiveSlider;

class SliderRow : public QWidget {
    Q_OBJECT
public:
    using Format = std::function<QString(double)>;

    SliderRow(const QString& title, double minimum, double maximum, Format format, QWidget* parent = nullptr);

    void setValue(double value);
    // Adds a line right under the slider (e.g. the ends of its scale).
    void addFooter(QWidget* footer);
    LiveSlider* slider() const { return slider_; }
    QString valueText() const;

private:
    Format format_;
    QLabel* value_;
    LiveSlider* slider_;
};

}  // namespace tavrelune::ui
