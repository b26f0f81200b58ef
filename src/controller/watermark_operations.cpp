// Choosing, placing and preparing the watermark.
#include "controller/app_model.h"

#include "engine/ffmpeg_error.h"
#include "model/media_type.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <algorithm>

namespace tavrelune {

double AppModel::watermarkImageAspect() const
{
    return watermarkImage_ ? watermarkImage_->aspect() : 1.0;
}

void AppModel::setWatermark(const QUrl& url)
{
    QString reason;
    auto image = WatermarkImage::load(url.toLocalFile(), &reason);
    if (!image) {
        setErrorMessage(
            QStringLiteral("Could not read that watermark: %1. Use a PNG or SVG with transparency.").arg(reason));
        return;
    }
    watermarkImage_ = std::move(image);
    stagedWatermark_.reset();
    ++lookChoices_;
    Q_EMIT watermarkPreviewChanged();

    placeWatermarkByDefault(url, 1.0);
}

void AppModel::placeWatermarkByDefault(const QUrl& url, double opacity)
{
    const double imageAspect = watermarkImageAspect();
    const double videoAspect = previewVideoAspect();
    WatermarkSettings placed;
    placed.widthFraction = WatermarkSettings::defaultWidthFraction;
    placed.opacity = opacity;
    placed.x = 1 - placed.widthFraction - WatermarkSettings::defaultMargin;
    placed.y = std::max(0.0, 1 - placed.heightFraction(imageAspect, videoAspect) - WatermarkSettings::defaultMargin);
    placed = placed.clamped(imageAspect, videoAspect);
    placed.url = url;
    setWatermarkSettings(placed);
    // Placed for the shape known now (16:9 before the clip is probed): the
    // selected clip's shape, once known, places it again until it is moved.
    watermarkAtDefault_ = true;
}

void AppModel::followShapeWithDefaultWatermark()
{
    if (watermarkAtDefault_ && watermark_.url)
        placeWatermarkByDefault(*watermark_.url, watermark_.opacity);
}

void AppModel::chooseWatermark()
{
    if (const auto url = chooseOneFile(QStringLiteral("Select a transparent PNG or SVG"),
                                       MediaType::watermarkExtensions()))
        setWatermark(*url);
}

void AppModel::clearWatermark()
{
    watermarkAtDefault_ = false;
    setWatermarkSettings(WatermarkSettings());
    watermarkImage_.reset();
    stagedWatermark_.reset();
    Q_EMIT watermarkPreviewChanged();
}

void AppModel::resetWatermarkPlacement()
{
    watermarkAtDefault_ = false;
    if (!watermark_.url || !watermarkImage_)
        return;
    const double imageAspect = watermarkImageAspect();
    const double videoAspect = previewVideoAspect();
    WatermarkSettings placed;
    placed.widthFraction = watermark_.widthFraction;
    placed.opacity = watermark_.opacity;
    const double height = placed.heightFraction(imageAspect, videoAspect);
    placed.x = std::max(0.0, 1 - placed.widthFraction - WatermarkSettings::defaultMargin);
    placed.y = std::max(0.0, 1 - height - WatermarkSettings::defaultMargin);
    placed = placed.clamped(imageAspect, videoAspect);
    placed.url = watermark_.url;
    placed.opacity = watermark_.opacity;
    setWatermarkSettings(placed);
}

void AppModel::updateWatermarkOpacity(double opacity)
{
    WatermarkSettings changed = watermark_;
    changed.opacity = opacity;
    setWatermarkSettings(changed.clamped(watermarkImageAspect(), previewVideoAspect()));
}

void AppModel::updateWatermarkSize(double widthFraction)
{
    watermarkAtDefault_ = false;
    WatermarkSettings changed = watermark_;
    changed.widthFraction = widthFraction;
    setWatermarkSettings(changed.clamped(watermarkImageAspect(), previewVideoAspect()));
}

void AppModel::updateWatermarkLayout(double x, double y, std::optional<double> widthFraction)
{
    watermarkAtDefault_ = false;
    WatermarkSettings changed = watermark_;
    changed.x = x;
    changed.y = y;
    if (widthFraction)
        changed.widthFraction = *widthFraction;
    setWatermarkSettings(changed.clamped(watermarkImageAspect(), previewVideoAspect()));
}

WatermarkOverlay AppModel::overlayFor(const QString& imagePath) const
{
    const double imageAspect = watermarkImageAspect();
    const WatermarkSettings placed = watermark_.clamped(imageAspect, previewVideoAspect());
    return {imagePath, placed.x, placed.y, placed.widthFraction, placed.opacity, imageAspect};
}

WatermarkOverlay AppModel::preparedWatermarkOverlay()
{
    if (!watermark_.url)
        throw FFmpegError::conversionFailed(QStringLiteral("No watermark selected."));
    const QString target = QDir(workspace_).filePath("active-watermark.png");
    if (!(stagedWatermark_ == target && QFile::exists(target))) {
        const QString source = watermark_.url->toLocalFile();
        QString reason;
        const auto image = WatermarkImage::load(source, &reason);
        if (!image)
            throw FFmpegError::conversionFailed(QStringLiteral("Could not read the watermark image: %1.").arg(reason));
        const auto png = image->pngData(image->rasterPixelSize(source));
        if (!png)
            throw FFmpegError::conversionFailed(QStringLiteral("Could not prepare the watermark as PNG."));
        QFile::remove(target);
        QSaveFile file(target);
        if (!file.open(QIODevice::WriteOnly) || file.write(*png) != png->size() || !file.commit())
            throw PlatformError(QStringLiteral("Could not write %1: %2").arg(target, file.errorString()));
        stagedWatermark_ = target;
    }
    return overlayFor(target);
}

std::optional<WatermarkOverlay> AppModel::preparedExportWatermark()
{
    if (!watermark_.url)
        return std::nullopt;
    return preparedWatermarkOverlay();
}

}  // namespace tavrelune
