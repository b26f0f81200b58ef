#include "ui/segmented_control.h"

#include "ui/appearance.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace tavrelune::ui {

namespace {

constexpr int segmentPadding = 14;
constexpr double radius = 6;

}  // namespace

SegmentedControl::SegmentedControl(QStringList labels, QWidget* parent)
    : QWidget(parent), labels_(std::move(labels))
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SegmentedControl::setCurrentIndex(int index)
{
    if (index < 0 || index >= labels_.size() || index == current_)
        return;
    current_ = index;
    update();
}

QSize SegmentedControl::sizeHint() const
{
    const QFontMetrics metrics(font());
    int widest = 0;
    for (const QString& label : labels_)
        widest = std::max(widest, metrics.horizontalAdvance(label));
    return {static_cast<int>(labels_.size()) * (widest + 2 * segmentPadding), metrics.height() + 12};
}

QSize SegmentedControl::minimumSizeHint() const { return sizeHint(); }

QRect SegmentedControl::segmentRect(int index) const
{
    const int count = std::max<int>(1, static_cast<int>(labels_.size()));
    const int left = width() * index / count;
    const int right = width() * (index + 1) / count;
    return QRect(left, 0, right - left, height());
}

void SegmentedControl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    const bool enabled = isEnabled();
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);

    // The track: the text colour faintly over the card.
    painter.setPen(QPen(appearance::blend(colors.color(QPalette::WindowText), colors.color(QPalette::Window), 0.18), 1));
    painter.setBrush(appearance::blend(colors.color(QPalette::WindowText), colors.color(QPalette::Window), 0.07));
    painter.drawRoundedRect(frame, radius, radius);

    // The selected segment: raised in the base colour.
    if (current_ >= 0 && current_ < labels_.size()) {
        const QRectF chosen = QRectF(segmentRect(current_)).adjusted(2, 2, -2, -2);
        painter.setPen(QPen(appearance::blend(colors.color(QPalette::WindowText), colors.color(QPalette::Base), 0.2), 1));
        painter.setBrush(colors.color(QPalette::Base));
        painter.drawRoundedRect(chosen, radius - 2, radius - 2);
        if (hasFocus()) {
            painter.setPen(QPen(appearance::accent(colors), 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(chosen, radius - 2, radius - 2);
        }
    }

    const QColor text = enabled ? colors.color(QPalette::WindowText) : appearance::tertiaryText(colors);
    for (int i = 0; i < labels_.size(); ++i) {
        QFont labelFont = font();
        if (i == current_)
            labelFont.setWeight(QFont::DemiBold);
        painter.setFont(labelFont);
        painter.setPen(i == current_ || !enabled ? text : appearance::secondaryText(colors));
        painter.drawText(segmentRect(i), Qt::AlignCenter, labels_[i]);
    }
}

void SegmentedControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    for (int i = 0; i < labels_.size(); ++i)
        if (segmentRect(i).contains(event->position().toPoint()))
            choose(i);
}

void SegmentedControl::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Left)
        choose(current_ - 1);
    else if (event->key() == Qt::Key_Right)
        choose(current_ + 1);
    else
        QWidget::keyPressEvent(event);
}

void SegmentedControl::choose(int index)
{
    if (index < 0 || index >= labels_.size())
        return;
    setCurrentIndex(index);
    Q_EMIT activated(index);
}

}  // namespace tavrelune::ui
