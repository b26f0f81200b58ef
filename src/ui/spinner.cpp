#include "ui/spinner.h"

#include <QPainter>
#include <QtMath>

namespace tavrelune::ui {

void paintSpinner(QPainter& painter, const QRectF& box, const QColor& color, qint64 elapsedMs)
{
    const double side = std::min(box.width(), box.height());
    const int lead = static_cast<int>((elapsedMs % spinnerPeriodMs) / spinnerFrameMs);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.center());
    QPen pen(color, std::max(1.2, side / 9), Qt::SolidLine, Qt::RoundCap);
    for (int spoke = 0; spoke < 12; ++spoke) {
        const int age = (lead - spoke + 12) % 12;  // 0: the brightest
        QColor faded = color;
        faded.setAlphaF(static_cast<float>(color.alphaF() * (1.0 - age / 13.0)));
        pen.setColor(faded);
        painter.setPen(pen);
        const double angle = spoke * M_PI / 6;
        const QPointF direction(std::sin(angle), -std::cos(angle));
        painter.drawLine(direction * side * 0.24, direction * side * 0.44);
    }
    painter.restore();
}

QPixmap spinnerPixmap(int side, qreal devicePixelRatio, const QColor& color, qint64 elapsedMs)
{
    QPixmap pixmap(QSize(side, side) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintSpinner(painter, QRectF(0, 0, side, side), color, elapsedMs);
    return pixmap;
}

}  // namespace tavrelune::ui
