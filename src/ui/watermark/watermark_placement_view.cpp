#include "ui/watermark/watermark_placement_view.h"

#include "controller/app_model.h"
#include "watermark/watermark_placement.h"

#include <QMouseEvent>
#include <QPainter>
#include <cmath>

namespace tavrelune {

namespace {

constexpr double shadowRadius = 4;
constexpr QPointF shadowOffset(0, 1);
constexpr double shadowAlpha = 0.25;
constexpr double handleBorderAlpha = 0.55;

// Three box blurs of the alpha channel, close to a Gaussian of `radius`.
QImage blurredAlpha(const QImage& source, int radius)
{
    QImage alpha = source.convertToFormat(QImage::Format_Alpha8);
    const int width = alpha.width();
    const int height = alpha.height();
    const int box = std::max(1, radius / 2);
    std::vector<int> line;
    auto blurLine = [&](uchar* first, int count, qsizetype step) {
        line.assign(static_cast<std::size_t>(count), 0);
        for (int i = 0; i < count; ++i)
            line[static_cast<std::size_t>(i)] = first[i * step];
        int sum = 0;
        for (int i = -box; i <= box; ++i)
            sum += (i >= 0 && i < count) ? line[static_cast<std::size_t>(i)] : 0;
        for (int i = 0; i < count; ++i) {
            first[i * step] = static_cast<uchar>(sum / (2 * box + 1));
            const int leaving = i - box;
            const int entering = i + box + 1;
            if (leaving >= 0)
                sum -= line[static_cast<std::size_t>(leaving)];
            if (entering < count)
                sum += line[static_cast<std::size_t>(entering)];
        }
    };
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < height; ++y)
            blurLine(alpha.scanLine(y), width, 1);
        for (int x = 0; x < width; ++x)
            blurLine(alpha.bits() + x, height, alpha.bytesPerLine());
    }
    return alpha;
}

}  // namespace

WatermarkPlacementView::WatermarkPlacementView(AppModel& model, QWidget* parent) : QWidget(parent), model_(model)
{
    setObjectName(QStringLiteral("watermarkPlacement"));
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    connect(&model_, &AppModel::watermarkChanged, this, &WatermarkPlacementView::follow);
    connect(&model_, &AppModel::watermarkPreviewChanged, this, &WatermarkPlacementView::follow);
    connect(&model_, &AppModel::watermarkEditableChanged, this, &WatermarkPlacementView::follow);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &WatermarkPlacementView::follow);
    connect(&model_, &AppModel::clipsChanged, this, &WatermarkPlacementView::follow);
    connect(&model_, &AppModel::sourcePreviewChanged, this, &WatermarkPlacementView::follow);
    follow();
}

void WatermarkPlacementView::follow()
{
    const bool editable = model_.watermarkEditable();
    if (!editable && drag_) {
        drag_.reset();
        unsetCursor();
    }
    // Input passes straight through while there is nothing to edit.
    setAttribute(Qt::WA_TransparentForMouseEvents, !editable);
    if (!drag_)
        updateCursor(mapFromGlobal(QCursor::pos()));
    update();
}

double WatermarkPlacementView::imageAspect() const
{
    const QImage image = model_.watermarkPreview();
    return !image.isNull() && image.height() > 0 ? static_cast<double>(image.width()) / image.height() : 1.0;
}

WatermarkSettings WatermarkPlacementView::clampedPlacement() const
{
    return model_.watermark().clamped(imageAspect(), model_.previewVideoAspect());
}

QRectF WatermarkPlacementView::videoRect() const
{
    std::optional<QSizeF> clipSize;
    if (const auto clip = model_.selectedClip(); clip && clip->width && clip->height)
        clipSize = QSizeF(static_cast<double>(*clip->width), static_cast<double>(*clip->height));
    return WatermarkPlacement::fittedVideoRect(QSizeF(size()), clipSize, model_.previewVideoAspect());
}

QRectF WatermarkPlacementView::watermarkRect() const
{
    return WatermarkPlacement::placedRect(videoRect(), model_.watermark(), imageAspect(),
                                          model_.previewVideoAspect());
}

const QPixmap& WatermarkPlacementView::scaledImage(QSize pixels)
{
    const QImage image = model_.watermarkPreview();
    if (scaledKey_ != image.cacheKey() || scaled_.size() != pixels) {
        scaled_ = QPixmap::fromImage(image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        scaledKey_ = image.cacheKey();
        shadowKey_ = 0;
    }
    return scaled_;
}

// The image's silhouette, blurred, on a canvas grown by the blur's reach.
const QPixmap& WatermarkPlacementView::shadow(QSize pixels)
{
    const QPixmap& image = scaledImage(pixels);
    if (shadowKey_ != image.cacheKey()) {
        const int reach = static_cast<int>(std::ceil(shadowRadius * devicePixelRatioF()));
        QImage canvas(image.size() + QSize(2 * reach, 2 * reach), QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        {
            QPainter painter(&canvas);
            painter.drawPixmap(reach, reach, image);
        }
        const QImage alpha = blurredAlpha(canvas, reach);
        QImage tinted(alpha.size(), QImage::Format_ARGB32_Premultiplied);
        tinted.fill(Qt::transparent);
        {
            QPainter painter(&tinted);
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(0, 0, 0, static_cast<int>(255 * shadowAlpha)));
            painter.drawRect(tinted.rect());
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.drawImage(0, 0, alpha);
        }
        shadow_ = QPixmap::fromImage(tinted);
        shadowKey_ = image.cacheKey();
    }
    return shadow_;
}

void WatermarkPlacementView::paintEvent(QPaintEvent*)
{
    const WatermarkSettings& settings = model_.watermark();
    const QImage image = model_.watermarkPreview();
    if (!settings.isEnabled() || image.isNull())
        return;
    const QRectF placed = watermarkRect();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (placed.width() > WatermarkPlacement::smallestDrawnWidth) {
        const qreal ratio = devicePixelRatioF();
        const QSize pixels(std::max(1, static_cast<int>(std::lround(placed.width() * ratio))),
                           std::max(1, static_cast<int>(std::lround(placed.height() * ratio))));
        painter.setOpacity(clampedPlacement().opacity);
        const QPixmap& silhouette = shadow(pixels);
        const double reach = (silhouette.width() - pixels.width()) / 2.0 / ratio;
        painter.drawPixmap(QRectF(placed.topLeft() + shadowOffset - QPointF(reach, reach),
                                  QSizeF(silhouette.size()) / ratio),
                           silhouette, QRectF(silhouette.rect()));
        painter.drawPixmap(placed, scaledImage(pixels), QRectF(QPointF(0, 0), QSizeF(pixels)));
        painter.setOpacity(1);
    }
    if (!model_.watermarkEditable())
        return;
    painter.setPen(QPen(QColor::fromRgbF(0, 0, 0, handleBorderAlpha), 1));
    painter.setBrush(Qt::white);
    const double radius = WatermarkPlacement::handleDiameter / 2;
    for (WatermarkCorner corner : allWatermarkCorners)
        painter.drawEllipse(WatermarkPlacement::handleCentre(placed, corner), radius - 0.5, radius - 0.5);
}

void WatermarkPlacementView::updateCursor(QPointF at)
{
    const QRectF placed = watermarkRect();
    if (!model_.watermarkEditable() || !WatermarkPlacement::inHitArea(placed, at)) {
        unsetCursor();
        return;
    }
    if (const auto corner = WatermarkPlacement::handleAt(placed, at)) {
        const bool falling = *corner == WatermarkCorner::topLeft || *corner == WatermarkCorner::bottomRight;
        setCursor(falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor);
        return;
    }
    setCursor(drag_ ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

void WatermarkPlacementView::mousePressEvent(QMouseEvent* event)
{
    const QPointF at = event->position();
    const QRectF placed = watermarkRect();
    if (event->button() != Qt::LeftButton || !model_.watermarkEditable() || drag_
        || !WatermarkPlacement::inHitArea(placed, at)) {
        event->ignore();  // on to the stage below
        return;
    }
    // Handles come before the body: near a corner the press resizes.
    drag_ = Drag{at, WatermarkPlacement::handleAt(placed, at), std::nullopt};
    if (!drag_->corner)
        setCursor(Qt::ClosedHandCursor);
    event->accept();
}

void WatermarkPlacementView::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = event->position();
    if (!drag_) {
        updateCursor(at);
        event->ignore();
        return;
    }
    const QPointF travel = at - drag_->start;
    if (!drag_->origin) {
        const double threshold =
            drag_->corner ? WatermarkPlacement::resizeThreshold : WatermarkPlacement::moveThreshold;
        if (std::hypot(travel.x(), travel.y()) < threshold)
            return;
        // Every step of a drag is computed from where the watermark was when
        // it began, not from the previous step.
        drag_->origin = clampedPlacement();
    }
    const QRectF video = videoRect();
    const WatermarkPlacement::Layout layout =
        drag_->corner ? WatermarkPlacement::resized(*drag_->origin, *drag_->corner, travel, video, imageAspect(),
                                                    model_.previewVideoAspect())
                      : WatermarkPlacement::moved(*drag_->origin, travel, video);
    model_.updateWatermarkLayout(layout.x, layout.y, layout.widthFraction);
}

void WatermarkPlacementView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!drag_ || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    drag_.reset();
    updateCursor(event->position());
}

}  // namespace tavrelune
