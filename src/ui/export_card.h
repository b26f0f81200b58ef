// The "Export" card: codec, quality, combining, audio, and a hint that says
// how the export will be made (naming the encoder actually in use). Each
// control writes one field of the controller's export settings.
//
// Further options go below the toggles through addOption(). Main thread.
// Follows the controller, which must outlive it.
#pragma once

#include "ui/inspector_card.h"

#include <QString>

class QCheckBox;
class QLineEdit;
class QComboBox;
class QLabel;
class QVBoxLayout;

namespace tavrelune {
class AppModel;
struct EncodeSettings;
}

namespace tavrelune::ui {

class SegmentedControl;

class ExportCard : public InspectorCard {
    Q_OBJECT
public:
    explicit ExportCard(AppModel& model, QWidget* parent = nullptr);

    // Adds an option below "Remove audio", above the hint; it is disabled
    // with the card's other controls during a conversion.
    void addOption(QWidget* option);

    // "Encoding with x265 (software). Audio is copied when possible." and
    // its siblings.
    static QString hintText(const EncodeSettings& settings, qsizetype clipCount, const QString& encoderLabel);

    SegmentedControl* codecPicker() const { return codec_; }
    QComboBox* qualityPicker() const { return quality_; }
    QLineEdit* combinedNameField() const { return combinedName_; }
    QCheckBox* combineToggle() const { return combine_; }
    QCheckBox* removeAudioToggle() const { return removeAudio_; }
    QCheckBox* matchPreviewToggle() const { return matchPreview_; }
    QString hint() const;

private:
    void follow();

    AppModel& model_;
    QWidget* controls_;
    QVBoxLayout* options_;
    SegmentedControl* codec_;
    QComboBox* quality_;
    QCheckBox* combine_;
    QWidget* combinedNameRow_;
    QLineEdit* combinedName_;
    QCheckBox* removeAudio_;
    QCheckBox* matchPreview_;
    QLabel* hint_;
};

}  // namespace tavrelune::ui
