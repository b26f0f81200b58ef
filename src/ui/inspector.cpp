#include "ui/inspector.h"

#include "ui/adjustments_card.h"
#include "ui/convert_button.h"
#include "ui/export_card.h"
#include "ui/lut_card.h"
#include "ui/output_folder_card.h"
#include "ui/watermark_card.h"

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

    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(18);
    for (QWidget* card : std::initializer_list<QWidget*>{lut_, watermark_, adjustments_, export_, output_, convert_})
        layout->addWidget(card);
    layout->addStretch(1);
    setWidget(column);
}

}  // namespace tavrelune::ui
