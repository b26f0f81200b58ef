// The indeterminate "working" spinner: twelve spokes fading round a circle.
// Owners animate it by repainting on a timer and passing the elapsed time.
//
// Main thread; pure drawing.
#pragma once

#include <QColor>
#include <QPixmap>
#include <QRectF>

class QPainter;

namespace tavrelune::ui {

// One turn takes this long.
inline constexpr int spinnerPeriodMs = 960;
// A repaint interval that shows every spoke step.
inline constexpr int spinnerFrameMs = spinnerPeriodMs / 12;

void paintSpinner(QPainter& painter, const QRectF& box, const QColor& color, qint64 elapsedMs);
QPixmap spinnerPixmap(int side, qreal devicePixelRatio, const QColor& color, qint64 elapsedMs);

}  // namespace tavrelune::ui
