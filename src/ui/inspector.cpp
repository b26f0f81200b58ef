#include "ui/inspector.h"

#include "controller/app_model.h"
#include "ui/adjustments_card.h"
#include "ui/appearance.h"
#include "ui/convert_button.h"
#include "ui/export_card.h"
#include "ui/lut_card.h"
#include "ui/output_folder_card.h"
#include "ui/watermark_card.h"

#include <QLabel>
#include <QVBoxLayout>

namespace tavrelune::ui {

Inspector::Inspector(AppModel& model, QWidget* parent) : QScrollArea(parent)
{
    setObjectName(QStringLiteral("inspector"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* column = new QWidget;
    column->setBackgroundRole(QPalette::Base);
    column->setAutoFillBackground(true);
    lut_ = new LutCard(model);
    watermark_ = new WatermarkCard(model);
    adjustments_ = new AdjustmentsCard(model);
    export_ = new ExportCard(model);
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

    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(18);
    // The forecast sits close under the button it belongs to.
    auto* convertColumn = new QWidget;
    auto* convertLayout = new QVBoxLayout(convertColumn);
    convertLayout->setContentsMargins(0, 0, 0, 0);
    convertLayout->setSpacing(6);
    convertLayout->addWidget(convert_);
    convertLayout->addWidget(forecast_);
    for (QWidget* card : std::initializer_list<QWidget*>{lut_, watermark_, adjustments_, export_, output_, convertColumn})
        layout->addWidget(card);
    layout->addStretch(1);
    setWidget(column);
}

QString Inspector::forecastText() const
{
    return forecast_->isHidden() ? QString() : forecast_->text();
}

}  // namespace tavrelune::ui
