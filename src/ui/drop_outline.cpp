#include "ui/drop_outline.h"

#include "ui/appearance.h"

#include <QEvent>
#include <QPainter>

namespace tavrelune::ui {

DropOutline::DropOutline(QWidget* target) : QWidget(target)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(target->rect());
    target->installEventFilter(this);
    hide();
}

bool DropOutline::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return false;
}

void DropOutline::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(appearance::accent(palette()), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(9, 9, -9, -9), 8, 8);
}

}  // namespace tavrelune::ui
