#include "ui/elided_label.h"

namespace tavrelune::ui {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::setFullText(const QString& text)
{
    full_ = text;
    setToolTip(text);
    elide();
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    mode_ = mode;
    elide();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    elide();
}

void ElidedLabel::elide()
{
    setText(fontMetrics().elidedText(full_, mode_, std::max(0, contentsRect().width())));
}

}  // namespace tavrelune::ui
