#include "ui/adjustments_card.h"

#include "controller/app_model.h"
#include "model/grade_values.h"
#include "model/delivery_conversion.h"
#include "ui/appearance.h"
#include "ui/small_button.h"
#include "ui/live_slider.h"
#include "ui/slider_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

SliderRow::Format formatFor(const GradeControl& control)
{
    const QByteArray unit(control.unit);
    return [unit](double value) { return QString::asprintf(unit.constData(), value); };
}

}  // namespace

AdjustmentsCard::AdjustmentsCard(AppModel& model, QWidget* parent)
    : InspectorCard(QStringLiteral("Per clip"), parent), model_(model)
{
    setObjectName(QStringLiteral("adjustmentsCard"));
    auto* hint = new QLabel(QStringLiteral("Select a clip to set exposure, contrast, saturation, white balance and tint."));
    hint->setWordWrap(true);
    hint->setFont(appearance::subheadline(font()));
    appearance::setTextColor(hint, appearance::secondaryText(palette()));

    auto* sliders = new QWidget;
    auto* column = new QVBoxLayout(sliders);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    clipName_ = new QLabel;
    clipName_->setTextFormat(Qt::PlainText);
    clipName_->setFont(appearance::weighted(appearance::subheadline(font()), QFont::Medium));
    clipName_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    column->addWidget(clipName_);
    // What the clip's colours go through before the grade ("HDR (HLG) → SDR").
    colourNote_ = new QLabel;
    colourNote_->setTextFormat(Qt::PlainText);
    colourNote_->setFont(appearance::caption(font()));
    appearance::setTextColor(colourNote_, appearance::secondaryText(palette()));
    colourNote_->hide();
    column->addWidget(colourNote_);

    controls_ = new QWidget;
    auto* controlColumn = new QVBoxLayout(controls_);
    controlColumn->setContentsMargins(0, 0, 0, 0);
    controlColumn->setSpacing(8);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const GradeControl& control = gradeControls[i];
        rows_[i] = new SliderRow(QString::fromUtf8(control.label), control.range.minimum, control.range.maximum,
                                 formatFor(control));
        rows_[i]->slider()->setStep(control.step);
        rows_[i]->slider()->setDefaultValue(control.neutral);
        controlColumn->addWidget(rows_[i]);
        const auto member = control.member;
        connect(rows_[i]->slider(), &LiveSlider::valueEdited, this, [this, member](double value) {
            model_.liveGrade().setValue(member, value);
            model_.pushLiveGradeToPreview();
        });
        connect(rows_[i]->slider(), &LiveSlider::editingChanged, this, [this](bool editing) {
            if (!editing)
                model_.commitLiveGrade();
        });
    }

    // The ends of the white-balance scales sit right under their sliders.
    const auto scaleEnds = [this](const QString& low, const QString& high) {
        auto* row = new QWidget;
        auto* ends = new QHBoxLayout(row);
        ends->setContentsMargins(0, 0, 0, 0);
        for (const QString& text : {low, high}) {
            auto* label = new QLabel(text);
            label->setFont(appearance::caption2(font()));
            appearance::setTextColor(label, appearance::tertiaryText(palette()));
            ends->addWidget(label);
            if (text == low)
                ends->addStretch(1);
        }
        return row;
    };
    rowFor(&GradeValues::temperature)->addFooter(scaleEnds(QStringLiteral("Cool"), QStringLiteral("Warm")));
    rowFor(&GradeValues::tint)->addFooter(scaleEnds(QStringLiteral("Green"), QStringLiteral("Magenta")));

    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 4, 0, 0);
    auto* reset = new SmallButton(QStringLiteral("Reset"));
    auto* applyAll = new SmallButton(QStringLiteral("Apply to all clips"));
    connect(reset, &QPushButton::clicked, &model_, &AppModel::resetAdjustments);
    connect(applyAll, &QPushButton::clicked, &model_, &AppModel::applyAdjustmentsToAll);
    buttons->addWidget(reset);
    buttons->addStretch(1);
    buttons->addWidget(applyAll);
    controlColumn->addLayout(buttons);
    column->addWidget(controls_);

    hint_ = hint;
    sliders_ = sliders;
    body()->addWidget(hint_);
    body()->addWidget(sliders_);

    connect(&model_.liveGrade(), &LiveGrade::valuesChanged, this, &AdjustmentsCard::followGrade);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &AdjustmentsCard::followSelection);
    connect(&model_, &AppModel::clipsChanged, this, &AdjustmentsCard::followSelection);
    connect(&model_, &AppModel::isConvertingChanged, this, &AdjustmentsCard::followSelection);
    followSelection();
    followGrade();
}

SliderRow* AdjustmentsCard::rowFor(double GradeValues::*member) const
{
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (gradeControls[i].member == member)
            return rows_[i];
    return nullptr;
}

bool AdjustmentsCard::showsSliders() const { return !sliders_->isHidden(); }

void AdjustmentsCard::followSelection()
{
    const auto clip = model_.selectedClip();
    hint_->setVisible(!clip);
    sliders_->setVisible(clip.has_value());
    clipName_->setText(clip ? clip->name : QString());
    const QString conversion = clip ? deliveryConversionLabel(deliveryConversionFor(clip->color)) : QString();
    colourNote_->setText(conversion);
    colourNote_->setVisible(!conversion.isEmpty());
    controls_->setEnabled(!model_.isConverting());
}

void AdjustmentsCard::followGrade()
{
    const GradeValues values = model_.liveGrade().values();
    for (std::size_t i = 0; i < rows_.size(); ++i)
        rows_[i]->setValue(values.*gradeControls[i].member);
}

}  // namespace tavrelune::ui
