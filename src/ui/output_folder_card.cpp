#include "ui/output_folder_card.h"

#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/small_button.h"
#include "ui/icons.h"
#include "ui/path_label.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrelune::ui {

OutputFolderCard::OutputFolderCard(AppModel& model, QWidget* parent)
    : InspectorCard(QStringLiteral("Output folder"), parent), model_(model)
{
    setObjectName(QStringLiteral("outputFolderCard"));
    auto* symbol = new QLabel;
    symbol->setPixmap(icons::symbol(QStringLiteral("folder"), appearance::secondaryText(palette())).pixmap(16, 16));
    symbol->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    symbol->setContentsMargins(0, 1, 0, 0);
    path_ = new PathLabel;
    path_->setFont(appearance::caption(font()));

    auto* where = new QHBoxLayout;
    where->setContentsMargins(0, 0, 0, 0);
    where->setSpacing(8);
    where->addWidget(symbol, 0, Qt::AlignTop);
    where->addWidget(path_, 1);

    buttons_ = new QWidget;
    auto* row = new QHBoxLayout(buttons_);
    row->setContentsMargins(0, 0, 0, 0);
    auto* choose = new SmallButton(QStringLiteral("Choose folder\u2026"));
    reveal_ = new SmallButton(QStringLiteral("Show in File Manager"));
    connect(choose, &QPushButton::clicked, &model_, &AppModel::chooseOutputFolder);
    connect(reveal_, &QPushButton::clicked, &model_, &AppModel::revealOutput);
    row->addWidget(choose);
    row->addWidget(reveal_);
    row->addStretch(1);

    body()->addLayout(where);
    body()->addWidget(buttons_);
    connect(&model_, &AppModel::outputFolderChanged, this, &OutputFolderCard::follow);
    connect(&model_, &AppModel::isConvertingChanged, this, &OutputFolderCard::follow);
    follow();
}

void OutputFolderCard::follow()
{
    const QUrl folder = model_.outputFolder();
    path_->setPath(folder.isEmpty() ? QStringLiteral("No folder selected") : folder.toLocalFile());
    reveal_->setVisible(!folder.isEmpty());
    buttons_->setEnabled(!model_.isConverting());
}

}  // namespace tavrelune::ui
