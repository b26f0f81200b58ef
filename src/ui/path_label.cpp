#include "ui/path_label.h"

#include <QScrollBar>
#include <QTextDocument>
#include <cmath>

namespace tavrelune::ui {

PathLabel::PathLabel(QWidget* parent) : QTextEdit(parent)
{
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    setAutoFillBackground(false);
    setFocusPolicy(Qt::ClickFocus);
}

void PathLabel::setPath(const QString& path)
{
    setPlainText(path);
    setToolTip(path);
    fitHeight();
}

void PathLabel::resizeEvent(QResizeEvent* event)
{
    QTextEdit::resizeEvent(event);
    fitHeight();
}

void PathLabel::fitHeight()
{
    document()->setTextWidth(viewport()->width());
    const int lineHeight = fontMetrics().lineSpacing();
    const int content = static_cast<int>(std::ceil(document()->size().height()));
    setFixedHeight(std::clamp(content, lineHeight, maximumLines * lineHeight) + 2 * frameWidth());
}

}  // namespace tavrelune::ui
