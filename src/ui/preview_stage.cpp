#include "ui/preview_stage.h"

#include "controller/app_model.h"
#include "model/picture_fit.h"
#include "ui/preview/graded_preview_view.h"
#include "ui/appearance.h"
#include "ui/icons.h"
#include "ui/watermark/watermark_placement_view.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

constexpr int badgeInset = 12;
constexpr int placeholderSymbolSize = 32;

}  // namespace

StillView::StillView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void StillView::setImage(const QImage& image)
{
    if (image.cacheKey() == image_.cacheKey())
        return;
    image_ = image;
    update();
}

void StillView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (image_.isNull())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(fitCentred(QSizeF(image_.size()), QSizeF(size())), image_);
}

PreviewStage::PreviewStage(AppModel& model, QWidget* parent) : QWidget(parent), model_(model)
{
    setObjectName(QStringLiteral("previewStage"));
    QPalette dark = palette();
    dark.setColor(QPalette::Window, Qt::black);
    setPalette(dark);
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);
    setMinimumHeight(120);

    live_ = new GradedPreviewView(&model_.previewPlayer(), false, this);
    live_->setObjectName(QStringLiteral("liveView"));
    still_ = new StillView(this);
    still_->setObjectName(QStringLiteral("stillView"));

    placeholder_ = new QWidget(this);
    const QColor secondary(0x8a, 0x8a, 0x8a);
    auto* symbol = new QLabel;
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(icons::bundled(QStringLiteral("tavrelune-preview"), secondary)
                          .pixmap(placeholderSymbolSize, placeholderSymbolSize));
    placeholderLabel_ = new QLabel;
    placeholderLabel_->setObjectName(QStringLiteral("placeholderText"));
    placeholderLabel_->setAlignment(Qt::AlignCenter);
    appearance::setTextColor(placeholderLabel_, secondary);
    auto* column = new QVBoxLayout(placeholder_);
    column->setSpacing(8);
    column->addStretch(1);
    column->addWidget(symbol);
    column->addWidget(placeholderLabel_);
    column->addStretch(1);

    watermark_ = new WatermarkPlacementView(model_, this);

    badge_ = new QLabel(this);
    badge_->setObjectName(QStringLiteral("compareBadge"));
    badge_->setFont(appearance::weighted(appearance::caption(font()), QFont::DemiBold));
    badge_->setAttribute(Qt::WA_TransparentForMouseEvents);
    const int badgeHeight = QFontMetrics(badge_->font()).height() + 8;
    badge_->setFixedHeight(badgeHeight);
    badge_->setStyleSheet(QStringLiteral("QLabel { color: white; background-color: rgba(0, 0, 0, 115);"
                                         " border-radius: %1px; padding: 0px 8px; }")
                              .arg(badgeHeight / 2));

    // Stacked bottom to top: picture, watermark, badge.
    watermark_->raise();
    badge_->raise();

    connect(&model_.clock(), &PreviewClock::isPlayableChanged, this, &PreviewStage::follow);
    connect(&model_, &AppModel::sourcePreviewChanged, this, &PreviewStage::follow);
    connect(&model_, &AppModel::gradedPreviewChanged, this, &PreviewStage::follow);
    connect(&model_, &AppModel::isPreviewingChanged, this, &PreviewStage::follow);
    connect(&model_, &AppModel::clipsChanged, this, &PreviewStage::follow);
    connect(&model_, &AppModel::selectedClipIDChanged, this, [this] {
        setShowingOriginal(false);
        follow();
    });
    follow();
}

QImage PreviewStage::displayImage() const
{
    const QImage source = model_.sourcePreview();
    const QImage graded = model_.gradedPreview();
    if (showingOriginal_)
        return source.isNull() ? graded : source;
    return graded.isNull() ? source : graded;
}

QString PreviewStage::placeholderText() const
{
    // With clips there is always a clip on its way to the screen; when its
    // still cannot be made, the status line says why.
    if (const auto clip = model_.selectedClip(); clip && clip->readError)
        return QStringLiteral("This file can't be previewed: ") + *clip->readError;
    if (model_.isPreviewing() || (!model_.clips().isEmpty() && model_.selectedClip()))
        return QStringLiteral("Loading preview\u2026");
    return QStringLiteral("Add clips to see a preview");
}

void PreviewStage::follow()
{
    const QImage image = displayImage();
    // An unreadable clip shows its reason, never what the player or the
    // stills still hold of the clip before it.
    const auto selected = model_.selectedClip();
    const bool unreadable = selected && selected->readError;
    content_ = unreadable                      ? Content::placeholder
               : model_.clock().isPlayable() ? Content::live
               : !image.isNull()             ? Content::still
                                             : Content::placeholder;
    live_->setVisible(content_ == Content::live);
    still_->setVisible(content_ == Content::still);
    if (content_ == Content::still)
        still_->setImage(image);
    placeholder_->setVisible(content_ == Content::placeholder);
    placeholderLabel_->setText(placeholderText());
    watermark_->setVisible(content_ != Content::placeholder);
    badge_->setVisible(content_ != Content::placeholder);
    badge_->setText(showingOriginal_ ? QStringLiteral("Original") : QStringLiteral("Graded"));
    badge_->adjustSize();
    layoutChildren();
}

void PreviewStage::setShowingOriginal(bool showing)
{
    if (showingOriginal_ == showing)
        return;
    showingOriginal_ = showing;
    live_->setCompareOriginal(showing);
    follow();
    Q_EMIT showingOriginalChanged(showing);
}

void PreviewStage::layoutChildren()
{
    const QRect whole = rect();
    for (QWidget* layer : {static_cast<QWidget*>(live_), static_cast<QWidget*>(still_), placeholder_,
                           static_cast<QWidget*>(watermark_)})
        layer->setGeometry(whole);
    badge_->move(badgeInset, badgeInset);
}

void PreviewStage::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layoutChildren();
}

// Presses reach here from the picture and from the watermark view outside
// the watermark itself.
void PreviewStage::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || content_ == Content::placeholder) {
        QWidget::mousePressEvent(event);
        return;
    }
    setShowingOriginal(true);
    event->accept();
}

void PreviewStage::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    setShowingOriginal(false);
    event->accept();
}

}  // namespace tavrelune::ui
