#include "ui/slider_row.h"

#include "ui/appearance.h"
#include "ui/live_slider.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace tavrelune::ui {

SliderRow::SliderRow(const QString& title, double minimum, double maximum, Format format, QWidget* parent)
    : QWidget(parent), format_(std::move(format))
{
    setObjectName(title);
    auto* titleLabel = new QLabel(title);
    titleLabel->setFont(appearance::subheadline(font()));
    value_ = new QLabel;
    value_->setFont(appearance::subheadline(font()));
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    appearance::setTextColor(value_, appearance::secondaryText(palette()));
    slider_ = new LiveSlider(minimum, maximum);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(0, 0, 0, 0);
    header->addWidget(titleLabel);
    header->addStretch(1);
    header->addWidget(value_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(header);
    column->addWidget(slider_);
}

void SliderRow::setValue(double value)
{
    value_->setText(format_(value));
    slider_->setValue(value);
}

void SliderRow::addFooter(QWidget* footer)
{
    layout()->addWidget(footer);
}

QString SliderRow::valueText() const { return value_->text(); }

}  // namespace tavrelune::ui
