#include "ui/preview_placeholder.h"

#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/icons.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace tavrelune::ui {

PreviewPlaceholder::PreviewPlaceholder(AppModel& model, QWidget* parent) : QWidget(parent), model_(model)
{
    setObjectName(QStringLiteral("previewPane"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);

    auto* header = new QWidget;
    header->setFixedHeight(appearance::paneHeaderHeight);
    auto* headerRow = new QHBoxLayout(header);
    headerRow->setContentsMargins(16, 0, 16, 0);
    auto* heading = new QLabel(QStringLiteral("Preview"));
    heading->setFont(appearance::headline(font()));
    headerRow->addWidget(heading);
    headerRow->addStretch(1);

    auto* divider = new QFrame;
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);

    auto* stage = new QWidget;
    QPalette dark = stage->palette();
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, QColor(0x9a, 0x9a, 0x9a));
    stage->setPalette(dark);
    stage->setBackgroundRole(QPalette::Window);
    stage->setAutoFillBackground(true);
    auto* symbol = new QLabel;
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(icons::bundled(QStringLiteral("tavrelune-preview"), QColor(0x7a, 0x7a, 0x7a)).pixmap(40, 40));
    title_ = new QLabel;
    title_->setAlignment(Qt::AlignCenter);
    title_->setTextFormat(Qt::PlainText);
    detail_ = new QLabel;
    detail_->setAlignment(Qt::AlignCenter);
    detail_->setFont(appearance::caption(font()));
    auto* stageColumn = new QVBoxLayout(stage);
    stageColumn->setSpacing(8);
    stageColumn->addStretch(1);
    stageColumn->addWidget(symbol);
    stageColumn->addWidget(title_);
    stageColumn->addWidget(detail_);
    stageColumn->addStretch(1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(divider);
    column->addWidget(stage, 1);

    connect(&model_, &AppModel::selectedClipIDChanged, this, &PreviewPlaceholder::follow);
    connect(&model_, &AppModel::clipsChanged, this, &PreviewPlaceholder::follow);
    follow();
}

void PreviewPlaceholder::follow()
{
    const auto clip = model_.selectedClip();
    title_->setText(clip ? clip->name : QStringLiteral("Add clips to see a preview"));
    QStringList facts;
    if (clip) {
        facts << clip->durationLabel();
        if (const QString resolution = clip->resolutionLabel(); !resolution.isEmpty())
            facts << resolution;
    }
    detail_->setText(facts.join(QStringLiteral(" \u00B7 ")));
    detail_->setVisible(!facts.isEmpty());
}

}  // namespace tavrelune::ui
