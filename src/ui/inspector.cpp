#include "ui/inspector.h"

#include "controller/app_model.h"
#include "ui/adjustments_card.h"
#include "ui/appearance.h"
#include "ui/convert_button.h"
#include "ui/export_card.h"
#include "ui/lut_card.h"
#include "ui/output_folder_card.h"
#include "ui/watermark_card.h"
#include "ui/wheel_guard.h"

#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace tavrelune::ui {

Inspector::Inspector(AppModel& model, QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("inspector"));
    cards_ = new QScrollArea;
    cards_->setFrameShape(QFrame::NoFrame);
    cards_->setWidgetResizable(true);
    cards_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* column = new QWidget;
    column->setBackgroundRole(QPalette::Base);
    column->setAutoFillBackground(true);
    lut_ = new LutCard(model);
    watermark_ = new WatermarkCard(model);
    adjustments_ = new AdjustmentsCard(model);
    export_ = new ExportCard(model);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(18);
    for (QWidget* card : std::initializer_list<QWidget*>{lut_, watermark_, adjustments_, export_})
        layout->addWidget(card);
    layout->addStretch(1);
    cards_->setWidget(column);
    (new WheelGuard(*cards_))->guardControlsIn(*column);

    output_ = new OutputFolderCard(model);
    convert_ = new ConvertButton(model);
    forecast_ = new QLabel;
    forecast_->setTextFormat(Qt::PlainText);
    forecast_->setAlignment(Qt::AlignHCenter);
    forecast_->setFont(appearance::caption(forecast_->font()));
    appearance::setTextColor(forecast_, appearance::secondaryText(palette(), QPalette::Base));
    const auto showForecast = [this, &model] {
        forecast_->setText(forecastSummary(model.sizeForecast()));
        forecast_->setVisible(!forecast_->text().isEmpty());
    };
    connect(&model, &AppModel::clipsChanged, forecast_, showForecast);
    connect(&model, &AppModel::settingsChanged, forecast_, showForecast);
    showForecast();

    // The footer holds what every export needs, so Convert stays in reach at
    // any window height; the forecast sits close under the button.
    footer_ = new QFrame;
    footer_->setObjectName(QStringLiteral("inspectorFooter"));
    footer_->setBackgroundRole(QPalette::Base);
    footer_->setAutoFillBackground(true);
    auto* separator = new QFrame;
    separator->setFrameShape(QFrame::HLine);
    separator->setFrameShadow(QFrame::Plain);
    appearance::setTextColor(separator, appearance::secondaryText(palette(), QPalette::Base));
    auto* footerLayout = new QVBoxLayout(footer_);
    footerLayout->setContentsMargins(16, 10, 16, 12);
    footerLayout->setSpacing(6);
    footerLayout->addWidget(output_);
    footerLayout->addSpacing(4);
    footerLayout->addWidget(convert_);
    footerLayout->addWidget(forecast_);

    auto* pane = new QVBoxLayout(this);
    pane->setContentsMargins(0, 0, 0, 0);
    pane->setSpacing(0);
    pane->addWidget(cards_, 1);
    pane->addWidget(separator);
    pane->addWidget(footer_);
}

QScrollBar* Inspector::verticalScrollBar() const { return cards_->verticalScrollBar(); }

void Inspector::ensureWidgetVisible(QWidget* child) { cards_->ensureWidgetVisible(child); }

QString Inspector::forecastText() const
{
    return forecast_->isHidden() ? QString() : forecast_->text();
}

}  // namespace tavrelune::ui
