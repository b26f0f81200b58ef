#include "ui/adjustments_card.h"

#include "controller/app_model.h"
#include "grading/grade_values.h"
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

struct GradeSlider {
    const char* title;
    double minimum;
    double maximum;
    SliderRow::Format format;
    void (LiveGrade::*set)(double);
    double step;  // one arrow-key press
    double neutral;
};

QString times(double value) { return QString::asprintf("%.2f", value) + QChar(0x00D7); }

const std::array<GradeSlider, 4>& gradeSliders()
{
    static const std::array<GradeSlider, 4> sliders{{
        {"Exposure", exposureRange.minimum, exposureRange.maximum,
         [](double v) { return QString::asprintf("%+.2f EV", v); }, &LiveGrade::setExposure, 0.05, 0},
        {"Contrast", contrastRange.minimum, contrastRange.maximum, times, &LiveGrade::setContrast, 0.01, 1},
        {"Saturation", saturationRange.minimum, saturationRange.maximum, times, &LiveGrade::setSaturation, 0.01, 1},
        {"White balance", temperatureRange.minimum, temperatureRange.maximum,
         [](double v) { return QString::asprintf("%+.0f", v); }, &LiveGrade::setTemperature, 1, 0},
    }};
    return sliders;
}

}  // namespace

AdjustmentsCard::AdjustmentsCard(AppModel& model, QWidget* parent)
    : InspectorCard(QStringLiteral("Per clip"), parent), model_(model)
{
    setObjectName(QStringLiteral("adjustmentsCard"));
    auto* hint = new QLabel(QStringLiteral("Select a clip to set exposure, contrast, saturation, and white balance."));
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
        const GradeSlider& spec = gradeSliders()[i];
        rows_[i] = new SliderRow(QString::fromLatin1(spec.title), spec.minimum, spec.maximum, spec.format);
        rows_[i]->slider()->setStep(spec.step);
        rows_[i]->slider()->setDefaultValue(spec.neutral);
        controlColumn->addWidget(rows_[i]);
        const auto set = spec.set;
        connect(rows_[i]->slider(), &LiveSlider::valueEdited, this, [this, set](double value) {
            (model_.liveGrade().*set)(value);
            model_.pushLiveGradeToPreview();
        });
        connect(rows_[i]->slider(), &LiveSlider::editingChanged, this, [this](bool editing) {
            if (!editing)
                model_.commitLiveGrade();
        });
    }

    // "Cool" and "Warm" sit right under the white-balance slider.
    const auto scaleEnd = [this](const QString& text) {
        auto* label = new QLabel(text);
        label->setFont(appearance::caption2(font()));
        appearance::setTextColor(label, appearance::tertiaryText(palette()));
        return label;
    };
    auto* coolWarm = new QWidget;
    auto* ends = new QHBoxLayout(coolWarm);
    ends->setContentsMargins(0, 0, 0, 0);
    ends->addWidget(scaleEnd(QStringLiteral("Cool")));
    ends->addStretch(1);
    ends->addWidget(scaleEnd(QStringLiteral("Warm")));
    rows_.back()->addFooter(coolWarm);

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

    const LiveGrade& grade = model_.liveGrade();
    connect(&grade, &LiveGrade::exposureChanged, this, &AdjustmentsCard::followGrade);
    connect(&grade, &LiveGrade::contrastChanged, this, &AdjustmentsCard::followGrade);
    connect(&grade, &LiveGrade::saturationChanged, this, &AdjustmentsCard::followGrade);
    connect(&grade, &LiveGrade::temperatureChanged, this, &AdjustmentsCard::followGrade);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &AdjustmentsCard::followSelection);
    connect(&model_, &AppModel::clipsChanged, this, &AdjustmentsCard::followSelection);
    connect(&model_, &AppModel::isConvertingChanged, this, &AdjustmentsCard::followSelection);
    followSelection();
    followGrade();
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
    const LiveGrade& grade = model_.liveGrade();
    const std::array<double, 4> values{grade.exposure(), grade.contrast(), grade.saturation(), grade.temperature()};
    for (std::size_t i = 0; i < rows_.size(); ++i)
        rows_[i]->setValue(values[i]);
}

}  // namespace tavrelune::ui
