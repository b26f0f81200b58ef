#include "ui/lut_card.h"

#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/file_choice_row.h"
#include "ui/icons.h"

#include <QVBoxLayout>

namespace tavrelune::ui {

LutCard::LutCard(AppModel& model, QWidget* parent) : InspectorCard(QStringLiteral("LUT"), parent), model_(model)
{
    setObjectName(QStringLiteral("lutCard"));
    row_ = new FileChoiceRow(icons::bundled(QStringLiteral("tavrelune-lut"), appearance::secondaryText(palette())));
    body()->addWidget(row_);
    connect(row_, &FileChoiceRow::chooseClicked, &model_, &AppModel::chooseLUT);
    connect(row_, &FileChoiceRow::clearClicked, &model_, &AppModel::clearLUT);
    connect(&model_, &AppModel::lutURLChanged, this, &LutCard::follow);
    connect(&model_, &AppModel::isConvertingChanged, this, &LutCard::follow);
    follow();
}

void LutCard::follow()
{
    row_->setFile(model_.lutURL());
    row_->setEnabled(!model_.isConverting());
}

}  // namespace tavrelune::ui
