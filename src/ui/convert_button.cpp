#include "ui/convert_button.h"

#include "controller/app_model.h"
#include "ui/icons.h"
#include "ui/spinner.h"

#include <QTimer>

namespace tavrelune::ui {

ConvertButton::ConvertButton(AppModel& model, QWidget* parent) : QPushButton(parent), model_(model)
{
    setObjectName(QStringLiteral("convertButton"));
    setToolTip(QStringLiteral("Apply the LUT and per-clip adjustments to all clips"));
    setMinimumHeight(38);
    setIconSize(QSize(16, 16));
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    setFont(bold);
    // Prominent: the accent colour, with a muted look when unavailable.
    setStyleSheet(QStringLiteral(
        "QPushButton { background-color: palette(highlight); color: palette(highlighted-text);"
        "  border: none; border-radius: 7px; padding: 8px 14px; }"
        "QPushButton:hover { background-color: palette(highlight); }"
        "QPushButton:pressed { background-color: palette(dark); }"
        "QPushButton:disabled { background-color: palette(midlight); color: palette(mid); }"));
    spinnerTimer_ = new QTimer(this);
    spinnerTimer_->setInterval(spinnerFrameMs);
    connect(spinnerTimer_, &QTimer::timeout, this, &ConvertButton::showSpinnerFrame);
    connect(this, &QPushButton::clicked, &model_, &AppModel::startConversion);
    connect(&model_, &AppModel::isConvertingChanged, this, &ConvertButton::follow);
    connect(&model_, &AppModel::canConvertChanged, this, &ConvertButton::follow);
    connect(&model_, &AppModel::settingsChanged, this, &ConvertButton::follow);
    connect(&model_, &AppModel::clipsChanged, this, &ConvertButton::follow);
    follow();
}

QString ConvertButton::title(const EncodeSettings& settings, qsizetype clipCount, bool converting,
                             std::optional<qsizetype> remaining)
{
    if (converting)
        return QStringLiteral("Working\u2026");
    if (settings.concatenateClips && clipCount >= 2)
        return QStringLiteral("Export one video");
    if (remaining && *remaining > 0)
        return QStringLiteral("Convert %1 remaining").arg(*remaining);
    if (remaining)
        return QStringLiteral("All converted");
    return QStringLiteral("Convert all");
}

void ConvertButton::follow()
{
    const bool converting = model_.isConverting();
    const int upToDate = model_.upToDateCount();
    const std::optional<qsizetype> remaining =
        upToDate > 0 ? std::optional<qsizetype>(model_.clipsToConvert().size()) : std::nullopt;
    setText(title(model_.settings(), model_.clips().size(), converting, remaining));
    setToolTip(remaining && *remaining == 0 ? QStringLiteral("Every clip is converted and unchanged since; "
                                                             "Export \u25B8 Convert All Again makes them again.")
                                            : QString());
    setEnabled(model_.canConvert());
    if (converting) {
        if (!spinnerTimer_->isActive()) {
            spinnerClock_.start();
            spinnerTimer_->start();
        }
        showSpinnerFrame();
    } else {
        spinnerTimer_->stop();
        setIcon(icons::bundled(QStringLiteral("document-export"), palette().color(QPalette::Active, QPalette::HighlightedText)));
    }
}

void ConvertButton::showSpinnerFrame()
{
    setIcon(QIcon(spinnerPixmap(16, devicePixelRatioF(), palette().color(QPalette::Mid), spinnerClock_.elapsed())));
}

}  // namespace tavrelune::ui
