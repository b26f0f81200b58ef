// A row of mutually exclusive segments, one of them selected, like a tab
// bar made into one control. Clicking a segment or pressing Left/Right while
// focused reports activated(); setCurrentIndex() does not.
//
// Main thread; a plain widget.
#pragma once

#include <QStringList>
#include <QWidget>

namespace tavrelune::ui {

class SegmentedControl : public QWidget {
    Q_OBJECT
public:
    explicit SegmentedControl(QStringList labels, QWidget* parent = nullptr);

    int currentIndex() const { return current_; }
    void setCurrentIndex(int index);
    QStringList labels() const { return labels_; }
    // Where segment `index` is drawn (for tests and hit-testing).
    QRect segmentRect(int index) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void activated(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void choose(int index);

    QStringList labels_;
    int current_ = 0;
};

}  // namespace tavrelune::ui
