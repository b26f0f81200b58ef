#include "ui/watermark_card.h"

#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/small_button.h"
#include "ui/file_choice_row.h"
#include "ui/icons.h"
#include "ui/live_slider.h"
#include "ui/slider_row.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

QString percent(double fraction) { return QString::asprintf("%.0f%%", fraction * 100); }

}  // namespace

WatermarkCard::WatermarkCard(AppModel& model, QWidget* parent)
    : InspectorCard(QStringLiteral("Watermark"), parent), model_(model)
{
    setObjectName(QStringLiteral("watermarkCard"));
    row_ = new FileChoiceRow(icons::symbol(QStringLiteral("image-x-generic"), appearance::secondaryText(palette())));
    connect(row_, &FileChoiceRow::chooseClicked, &model_, &AppModel::chooseWatermark);
    connect(row_, &FileChoiceRow::clearClicked, &model_, &AppModel::clearWatermark);

    // The controller clamps both values; the sliders only offer its range.
    size_ = new SliderRow(QStringLiteral("Size"), 0.05, 0.8, percent);
    opacity_ = new SliderRow(QStringLiteral("Opacity"), 0.1, 1.0, percent);
    for (SliderRow* row : {size_, opacity_}) {
        row->setDisplayScale(100);
        row->slider()->setStep(0.01);
    }
    size_->slider()->setDefaultValue(WatermarkSettings::defaultWidthFraction);
    opacity_->slider()->setDefaultValue(1.0);
    connect(size_->slider(), &LiveSlider::valueEdited, &model_, &AppModel::updateWatermarkSize);
    connect(opacity_->slider(), &LiveSlider::valueEdited, &model_, &AppModel::updateWatermarkOpacity);
    auto* reset = new SmallButton(QStringLiteral("Reset position"));
    connect(reset, &QPushButton::clicked, &model_, &AppModel::resetWatermarkPlacement);
    auto* note = new QLabel(QStringLiteral("Drag the watermark on the preview to place it. Drag a corner to resize."));
    note->setWordWrap(true);
    note->setFont(appearance::caption(font()));
    appearance::setTextColor(note, appearance::secondaryText(palette()));

    placement_ = new QWidget;
    auto* column = new QVBoxLayout(placement_);
    column->setContentsMargins(0, 4, 0, 0);
    column->setSpacing(8);
    column->addWidget(size_);
    column->addWidget(opacity_);
    column->addWidget(reset, 0, Qt::AlignLeft);
    column->addWidget(note);

    body()->addWidget(row_);
    body()->addWidget(placement_);
    connect(&model_, &AppModel::watermarkChanged, this, &WatermarkCard::follow);
    connect(&model_, &AppModel::watermarkPreviewChanged, this, &WatermarkCard::follow);
    connect(&model_, &AppModel::isConvertingChanged, this, &WatermarkCard::follow);
    follow();
}

void WatermarkCard::follow()
{
    const WatermarkSettings& watermark = model_.watermark();
    row_->setFile(watermark.url.value_or(QUrl()), model_.watermarkPreview());
    row_->setEnabled(!model_.isConverting());
    placement_->setVisible(watermark.isEnabled());
    placement_->setEnabled(!model_.isConverting());
    size_->setValue(watermark.widthFraction);
    opacity_->setValue(watermark.opacity);
}

}  // namespace tavrelune::ui
