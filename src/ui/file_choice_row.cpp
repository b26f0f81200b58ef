#include "ui/file_choice_row.h"

#include "ui/appearance.h"
#include "ui/elided_label.h"
#include "ui/small_button.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace tavrelune::ui {

namespace {

constexpr int thumbnailSide = 22;

}  // namespace

FileChoiceRow::FileChoiceRow(const QIcon& symbol, QWidget* parent) : QWidget(parent), symbol_(symbol)
{
    image_ = new QLabel;
    image_->setFixedSize(thumbnailSide, thumbnailSide);
    image_->setAlignment(Qt::AlignCenter);
    name_ = new ElidedLabel;
    name_->setFont(appearance::subheadline(font()));
    name_->setElideMode(Qt::ElideMiddle);
    auto* choose = new SmallButton(QStringLiteral("Choose\u2026"));
    clear_ = new SmallButton(QStringLiteral("Clear"));
    connect(choose, &QPushButton::clicked, this, &FileChoiceRow::chooseClicked);
    connect(clear_, &QPushButton::clicked, this, &FileChoiceRow::clearClicked);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(image_);
    row->addWidget(name_, 1);
    row->addWidget(choose);
    row->addWidget(clear_);
    setFile(QUrl());
}

void FileChoiceRow::setFile(const QUrl& url, const QImage& thumbnail)
{
    const bool chosen = !url.isEmpty();
    const QString name = chosen ? QFileInfo(url.path()).fileName() : QStringLiteral("None");
    name_->setFullText(name);
    name_->setToolTip(chosen ? url.toLocalFile() : QString());
    appearance::setTextColor(name_, chosen ? appearance::primaryText(palette())
                                           : appearance::secondaryText(palette()));
    if (!thumbnail.isNull()) {
        const qreal ratio = devicePixelRatioF();
        QPixmap pixmap = QPixmap::fromImage(thumbnail.scaled(QSize(thumbnailSide, thumbnailSide) * ratio,
                                                             Qt::KeepAspectRatio, Qt::SmoothTransformation));
        pixmap.setDevicePixelRatio(ratio);
        image_->setPixmap(pixmap);
    } else {
        image_->setPixmap(symbol_.pixmap(16, 16));
    }
    clear_->setVisible(chosen);
}

QString FileChoiceRow::shownName() const { return name_->fullText(); }
bool FileChoiceRow::canClear() const { return !clear_->isHidden(); }

}  // namespace tavrelune::ui
