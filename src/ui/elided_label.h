// A one-line label that shows as much of its text as fits, ending in an
// ellipsis when cut; the whole text is its tooltip. It never asks for more
// width than it is given, so long names cannot widen their pane.
//
// Main thread; a plain widget.
#pragma once

#include <QLabel>

namespace tavrelune::ui {

class ElidedLabel : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    QString fullText() const { return full_; }
    void setElideMode(Qt::TextElideMode mode);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    QString full_;
    Qt::TextElideMode mode_ = Qt::ElideRight;
};

}  // namespace tavrelune::ui
