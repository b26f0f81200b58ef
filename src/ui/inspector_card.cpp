#include "ui/inspector_card.h"

#include "ui/appearance.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace tavrelune::ui {

InspectorCard::InspectorCard(const QString& title, QWidget* parent) : QFrame(parent)
{
    auto* titleLabel = new QLabel(title);
    titleLabel->setFont(appearance::headline(font()));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(10);
    column->addWidget(titleLabel);
    body_ = new QVBoxLayout;
    body_->setSpacing(8);
    column->addLayout(body_);
}

void InspectorCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()), 12, 12);
    painter.fillPath(path, palette().color(QPalette::Window));
}

}  // namespace tavrelune::ui
