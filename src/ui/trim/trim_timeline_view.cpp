#include "ui/trim/trim_timeline_view.h"

#include "ui/appearance.h"

#include <QMouseEvent>
#include <QPainter>

namespace tavrelune::trim {

namespace {

QColor withAlpha(QColor colour, double alpha)
{
    colour.setAlphaF(static_cast<float>(alpha));
    return colour;
}

}  // namespace

TrimTimelineView::TrimTimelineView(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("trimTimeline"));
    setMouseTracking(true);  // the cursor follows what a press would grab
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TrimTimelineView::setState(State state)
{
    state.duration = state.duration > 0 ? state.duration : 0;
    state_ = state;
    update();
}

TrimTimelineGeometry TrimTimelineView::trimGeometry() const
{
    return {QRectF(rect()), state_.duration, state_.inPoint, state_.outPoint, state_.playhead};
}

QSize TrimTimelineView::sizeHint() const { return {240, int(TrimTimelineGeometry::intrinsicHeight)}; }
QSize TrimTimelineView::minimumSizeHint() const { return {60, int(TrimTimelineGeometry::intrinsicHeight)}; }

bool TrimTimelineView::acceptsDrags() const { return state_.enabled && isEnabled() && state_.duration > 0; }

void TrimTimelineView::paintEvent(QPaintEvent*)
{
    if (!(state_.duration > 0))
        return;
    const TrimTimelineGeometry shape = trimGeometry();
    const bool lit = state_.enabled && isEnabled();
    const QColor label = palette().color(QPalette::Active, QPalette::WindowText);
    const QColor accent = ui::appearance::accent(palette());

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(label, 0.12));
    painter.drawRoundedRect(shape.track(), 3, 3);
    painter.setBrush(withAlpha(accent, lit ? 0.38 : 0.18));
    painter.drawRoundedRect(shape.keptRange(), 3, 3);

    const QColor handle = withAlpha(accent, lit ? 1.0 : 0.45);
    QColor grabbed = ui::appearance::blend(handle, Qt::white, 0.82);  // 18 % towards white
    grabbed.setAlphaF(handle.alphaF());
    const auto drawHandle = [&](double seconds, DragTarget target) {
        painter.setBrush(dragTarget_ == target ? grabbed : handle);
        painter.drawRoundedRect(shape.handle(shape.x(seconds)), 2, 2);
    };
    drawHandle(state_.inPoint, DragTarget::inHandle);
    drawHandle(state_.outPoint, DragTarget::outHandle);

    const double playhead = shape.x(state_.playhead);
    painter.setBrush(withAlpha(label, lit ? 0.92 : 0.4));
    painter.drawRect(shape.playheadLine(playhead));
    painter.drawPolygon(shape.playheadTip(playhead));
}

void TrimTimelineView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || dragTarget_ || !acceptsDrags())
        return;
    setFocus(Qt::MouseFocusReason);
    dragTarget_ = trimGeometry().hitTarget(event->position());
    if (!dragTarget_)
        return;
    if (onScrubStart)
        onScrubStart();
    applyDrag(event->position());
}

void TrimTimelineView::mouseMoveEvent(QMouseEvent* event)
{
    if (!dragTarget_) {
        followPointer(event->position());
        return;
    }
    if (acceptsDrags())
        applyDrag(event->position());
}

void TrimTimelineView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    endDrag();
    followPointer(event->position());
}

// A widget disabled mid-drag gets no release, so its drag ends here: the
// host must never be left scrubbing.
void TrimTimelineView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        endDrag();
}

void TrimTimelineView::applyDrag(QPointF point)
{
    const double seconds = trimGeometry().time(point.x());
    switch (*dragTarget_) {
    case DragTarget::inHandle:
        if (onInChange)
            onInChange(seconds);
        break;
    case DragTarget::outHandle:
        if (onOutChange)
            onOutChange(seconds);
        break;
    case DragTarget::playhead:
        if (onPlayheadChange)
            onPlayheadChange(seconds);
        break;
    }
    update();
}

void TrimTimelineView::endDrag()
{
    if (!dragTarget_)
        return;
    dragTarget_.reset();
    if (onScrubEnd)
        onScrubEnd();
    update();
}

void TrimTimelineView::followPointer(QPointF point)
{
    const auto target = trimGeometry().hitTarget(point);
    if (!target)
        setCursor(Qt::ArrowCursor);
    else if (*target == DragTarget::playhead)
        setCursor(Qt::PointingHandCursor);
    else
        setCursor(Qt::SizeHorCursor);
}

}  // namespace tavrelune::trim
