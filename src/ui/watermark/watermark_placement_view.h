// The watermark over the preview, where the export will put it, with four
// round handles: drag the image to move it, drag a handle to resize it.
// Every change goes through AppModel::updateWatermarkLayout, whose clamping
// keeps the watermark inside the frame.
//
// The view lies over the whole stage and draws into the rectangle the video
// fills there (fitted as the live view fits its frames). It takes the mouse
// only while the watermark is editable and only within the watermark grown
// by 8 pixels; presses elsewhere go on to the stage below.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "watermark/watermark_settings.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <optional>

namespace tavrelune {

class AppModel;

class WatermarkPlacementView : public QWidget {
    Q_OBJECT
public:
    explicit WatermarkPlacementView(AppModel& model, QWidget* parent = nullptr);

    // The video's rectangle in this view, and the watermark's inside it.
    QRectF videoRect() const;
    QRectF watermarkRect() const;
    // A move or resize has passed its threshold and not yet ended.
    bool isDragging() const { return drag_ && drag_->origin; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Drag {
        QPointF start;
        std::optional<WatermarkCorner> corner;  // none: a move
        std::optional<WatermarkSettings> origin;  // set once the drag starts
    };

    void follow();
    void updateCursor(QPointF at);
    double imageAspect() const;
    WatermarkSettings clampedPlacement() const;
    const QPixmap& scaledImage(QSize pixels);
    const QPixmap& shadow(QSize pixels);

    AppModel& model_;
    std::optional<Drag> drag_;
    // Scaled copies, remade when the image or its size on screen changes.
    QPixmap scaled_;
    QPixmap shadow_;
    qint64 scaledKey_ = 0;
    qint64 shadowKey_ = 0;
};

}  // namespace tavrelune
