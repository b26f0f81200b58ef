#include "ui/status_row.h"

#include "controller/app_model.h"
#include "model/time_formatting.h"
#include "ui/appearance.h"
#include "ui/small_button.h"
#include "ui/elided_label.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>

namespace tavrelune::ui {

namespace {

constexpr int progressSteps = 1000;

}  // namespace

StatusRow::StatusRow(AppModel& model, QWidget* parent) : QWidget(parent), model_(model)
{
    setObjectName(QStringLiteral("statusRow"));
    setFont(appearance::caption(font()));
    const QColor secondary = appearance::secondaryText(palette());

    progress_ = new QProgressBar;
    progress_->setRange(0, progressSteps);
    progress_->setTextVisible(false);
    progress_->setMaximumWidth(220);
    progress_->setMinimumWidth(160);
    progress_->setFixedHeight(8);
    stop_ = new SmallButton(QStringLiteral("Stop"));
    stop_->setFont(font());
    connect(stop_, &QPushButton::clicked, &model_, &AppModel::cancelConversion);
    message_ = new ElidedLabel;
    appearance::setTextColor(message_, secondary);
    timeLeft_ = new QLabel;
    timeLeft_->setTextFormat(Qt::PlainText);
    appearance::setTextColor(timeLeft_, secondary);
    summary_ = new QLabel;
    summary_->setTextFormat(Qt::PlainText);
    appearance::setTextColor(summary_, secondary);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 8, 16, 8);
    row->setSpacing(12);
    row->addWidget(progress_);
    row->addWidget(stop_);
    row->addWidget(timeLeft_);
    row->addWidget(message_, 1);
    row->addWidget(summary_);

    connect(&model_, &AppModel::isConvertingChanged, this, &StatusRow::followConversion);
    connect(&model_, &AppModel::conversionFractionChanged, this, &StatusRow::followConversion);
    connect(&model_, &AppModel::statusMessageChanged, this, &StatusRow::followStatus);
    connect(&model_, &AppModel::clipsChanged, this, &StatusRow::followSummary);
    connect(&model_, &AppModel::lutURLChanged, this, &StatusRow::followSummary);
    followConversion();
    followStatus();
    followSummary();
}

QString StatusRow::summary(qsizetype clipCount, const QUrl& lut)
{
    const QString noun = clipCount == 1 ? QStringLiteral("clip") : QStringLiteral("clips");
    const QString lutLabel = lut.isEmpty() ? QStringLiteral("no LUT") : QFileInfo(lut.path()).fileName();
    return QStringLiteral("%1 %2 \u00B7 %3").arg(clipCount).arg(noun, lutLabel);
}

QString StatusRow::summaryText() const { return summary_->text(); }
QString StatusRow::timeLeftText() const { return timeLeft_->isHidden() ? QString() : timeLeft_->text(); }
bool StatusRow::showsProgress() const { return !progress_->isHidden(); }

void StatusRow::followConversion()
{
    const bool converting = model_.isConverting();
    if (converting && !batchClock_.isValid())
        batchClock_.start();
    else if (!converting)
        batchClock_.invalidate();
    progress_->setVisible(converting);
    stop_->setVisible(converting);
    const QString left = converting ? TimeFormatting::timeLeft(static_cast<double>(batchClock_.elapsed()) / 1000.0,
                                                                model_.conversionFraction())
                                    : QString();
    timeLeft_->setText(left);
    timeLeft_->setVisible(!left.isEmpty());
    progress_->setValue(static_cast<int>(std::clamp(model_.conversionFraction(), 0.0, 1.0) * progressSteps));
}

// The message gets whatever room the row has left, elided when longer.
void StatusRow::followStatus()
{
    status_ = model_.statusMessage();
    message_->setVisible(!status_.isEmpty());
    message_->setFullText(status_);
}

void StatusRow::followSummary()
{
    summary_->setText(summary(model_.clips().size(), model_.lutURL()));
}

void StatusRow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setPen(appearance::blend(palette().color(QPalette::WindowText), palette().color(QPalette::Window), 0.15));
    painter.drawLine(rect().topLeft(), rect().topRight());
}

}  // namespace tavrelune::ui
