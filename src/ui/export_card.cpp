#include "ui/export_card.h"

#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/segmented_control.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrelune::ui {

namespace {

template <typename List, typename Value>
int positionIn(const List& list, Value value)
{
    return static_cast<int>(std::find(list.begin(), list.end(), value) - list.begin());
}

}  // namespace

ExportCard::ExportCard(AppModel& model, QWidget* parent)
    : InspectorCard(QStringLiteral("Export"), parent), model_(model)
{
    setObjectName(QStringLiteral("exportCard"));
    QStringList codecs;
    for (VideoCodec codec : allVideoCodecs)
        codecs << rawValue(codec);
    codec_ = new SegmentedControl(codecs);
    quality_ = new QComboBox;
    for (QualityPreset preset : allQualityPresets)
        quality_->addItem(rawValue(preset));
    combine_ = new QCheckBox(QStringLiteral("Combine into one video"));
    combinedName_ = new QLineEdit;
    combinedName_->setObjectName(QStringLiteral("combinedName"));
    combinedName_->setToolTip(QStringLiteral("The combined video's file name; empty: the time the export starts"));
    combinedNameRow_ = new QWidget;
    auto* nameRow = new QHBoxLayout(combinedNameRow_);
    nameRow->setContentsMargins(22, 0, 0, 0);
    nameRow->addWidget(new QLabel(QStringLiteral("File name")));
    nameRow->addWidget(combinedName_, 1);
    nameRow->addWidget(new QLabel(QStringLiteral(".mp4")));
    removeAudio_ = new QCheckBox(QStringLiteral("Remove audio"));
    matchPreview_ = new QCheckBox(QStringLiteral("Match preview colours"));
    auto* matchCaption = new QLabel(QStringLiteral(
        "Bakes the preview\u2019s grade into one look-up table: the file looks exactly like the preview, "
        "and exports faster."));
    matchCaption->setWordWrap(true);
    matchCaption->setFont(appearance::caption(font()));
    appearance::setTextColor(matchCaption, appearance::secondaryText(palette()));
    hint_ = new QLabel;
    hint_->setWordWrap(true);
    hint_->setFont(appearance::caption(font()));
    appearance::setTextColor(hint_, appearance::secondaryText(palette()));

    const auto change = [this](auto edit) {
        EncodeSettings settings = model_.settings();
        edit(settings);
        model_.setSettings(settings);
    };
    connect(codec_, &SegmentedControl::activated, this, [change](int index) {
        change([index](EncodeSettings& s) { s.codec = allVideoCodecs[static_cast<std::size_t>(index)]; });
    });
    connect(quality_, &QComboBox::activated, this, [change](int index) {
        change([index](EncodeSettings& s) { s.quality = allQualityPresets[static_cast<std::size_t>(index)]; });
    });
    connect(combine_, &QCheckBox::clicked, this, [change](bool on) {
        change([on](EncodeSettings& s) { s.concatenateClips = on; });
    });
    connect(combinedName_, &QLineEdit::editingFinished, this, [this, change] {
        change([this](EncodeSettings& s) { s.combinedName = combinedName_->text().trimmed(); });
    });
    connect(removeAudio_, &QCheckBox::clicked, this, [change](bool on) {
        change([on](EncodeSettings& s) { s.removeAudio = on; });
    });
    connect(matchPreview_, &QCheckBox::clicked, this, [change](bool on) {
        change([on](EncodeSettings& s) { s.matchPreview = on; });
    });

    controls_ = new QWidget;
    auto* grid = new QGridLayout(controls_);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(8);
    grid->addWidget(new QLabel(QStringLiteral("Codec")), 0, 0);
    grid->addWidget(codec_, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Quality")), 1, 0);
    grid->addWidget(quality_, 1, 1);
    grid->setColumnStretch(1, 1);
    options_ = new QVBoxLayout;
    options_->setContentsMargins(0, 4, 0, 0);
    options_->setSpacing(6);
    options_->addWidget(combine_);
    options_->addWidget(combinedNameRow_);
    options_->addWidget(removeAudio_);
    options_->addWidget(matchPreview_);
    options_->addWidget(matchCaption);
    grid->addLayout(options_, 2, 0, 1, 2);

    body()->addWidget(controls_);
    body()->addWidget(hint_);
    connect(&model_, &AppModel::settingsChanged, this, &ExportCard::follow);
    connect(&model_, &AppModel::clipsChanged, this, &ExportCard::follow);
    connect(&model_, &AppModel::isConvertingChanged, this, &ExportCard::follow);
    connect(&model_, &AppModel::encodersChanged, this, &ExportCard::follow);
    follow();
}

void ExportCard::addOption(QWidget* option)
{
    options_->addWidget(option);
}

QString ExportCard::hintText(const EncodeSettings& settings, qsizetype clipCount, const QString& encoderLabel)
{
    const QString encoding = QStringLiteral("Encoding with %1.").arg(encoderLabel);
    if (settings.concatenateClips && clipCount > 1)
        return QStringLiteral("Clips are scaled to the first clip\u2019s size and joined in list order. ") + encoding;
    if (settings.removeAudio)
        return encoding + QStringLiteral(" Audio is stripped from the export.");
    return encoding + QStringLiteral(" Audio is copied when possible.");
}

QString ExportCard::hint() const { return hint_->text(); }

void ExportCard::follow()
{
    const EncodeSettings& settings = model_.settings();
    const qsizetype clipCount = model_.clips().size();
    codec_->setCurrentIndex(positionIn(allVideoCodecs, settings.codec));
    quality_->setCurrentIndex(positionIn(allQualityPresets, settings.quality));
    combine_->setChecked(settings.concatenateClips);
    combine_->setEnabled(clipCount >= 2);
    combinedNameRow_->setVisible(settings.concatenateClips && clipCount >= 2);
    if (!combinedName_->hasFocus())
        combinedName_->setText(settings.combinedName);
    combinedName_->setPlaceholderText(
        QStringLiteral("Tavrelune_") + QDateTime::currentDateTimeUtc().toString(Qt::ISODate).replace(':', '-'));
    removeAudio_->setChecked(settings.removeAudio);
    matchPreview_->setChecked(settings.matchPreview);
    controls_->setEnabled(!model_.isConverting());
    hint_->setText(hintText(settings, clipCount, model_.encoderLabel()));
}

}  // namespace tavrelune::ui
