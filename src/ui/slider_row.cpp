#include "ui/slider_row.h"

#include "ui/appearance.h"
#include "ui/live_slider.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <algorithm>

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
    value_->installEventFilter(this);
    value_->setToolTip(QStringLiteral("Double-click to type a value"));
    editor_ = new QLineEdit;
    editor_->setAlignment(Qt::AlignRight);
    editor_->setFont(value_->font());
    editor_->setMaximumWidth(110);
    editor_->hide();
    editor_->installEventFilter(this);
    connect(editor_, &QLineEdit::returnPressed, this, [this] { endTyping(true); });

    auto* header = new QHBoxLayout;
    header->setContentsMargins(0, 0, 0, 0);
    header->addWidget(titleLabel);
    header->addStretch(1);
    header->addWidget(value_);
    header->addWidget(editor_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(header);
    column->addWidget(slider_);
}

void SliderRow::setValue(double value)
{
    shown_ = value;
    value_->setText(format_(value));
    slider_->setValue(value);
}

void SliderRow::addFooter(QWidget* footer)
{
    layout()->addWidget(footer);
}

QString SliderRow::valueText() const { return value_->text(); }

void SliderRow::beginTyping()
{
    if (!slider_->isEnabled() || editor_->isVisible())
        return;
    editor_->setText(QString::number(shown_ * displayScale_, 'f', 2).remove(QRegularExpression("\\.?0+$")));
    value_->hide();
    editor_->show();
    editor_->selectAll();
    editor_->setFocus(Qt::MouseFocusReason);
}

void SliderRow::endTyping(bool apply)
{
    if (!editor_->isVisible())
        return;
    // The first number in the text: "+0.3 EV", "1,2", "25 %" all read.
    static const QRegularExpression number(QStringLiteral("[-+\u2212]?(\\d+([.,]\\d*)?|[.,]\\d+)"));
    const QRegularExpressionMatch found = number.match(editor_->text());
    editor_->hide();
    value_->show();
    if (!apply || !found.hasMatch())
        return;
    bool ok = false;
    const double typed =
        found.captured(0).replace(QChar(0x2212), QLatin1Char('-')).replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (ok)
        slider_->editTo(std::clamp(typed / displayScale_, slider_->minimumValue(), slider_->maximumValue()));
}

bool SliderRow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == value_ && event->type() == QEvent::MouseButtonDblClick) {
        beginTyping();
        return true;
    }
    if (watched == editor_) {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            endTyping(false);
            return true;
        }
        if (event->type() == QEvent::FocusOut)
            endTyping(false);
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tavrelune::ui
