// The trim editor's timeline: the clip's whole length as a track with the
// kept range, an in handle, an out handle and the playhead. A pure view: it
// holds the times its host last gave it and reports each drag through
// callbacks (one onScrubStart, one change callback per pointer move for the
// item grabbed, the first at the press itself, then one onScrubEnd). An
// item moves on screen only when the host's new times arrive.
//
// Keys are not handled here; they pass on to the editor around it.
//
// Threading: main thread only; callbacks run inside the mouse handlers.
// Units: seconds. Ownership: a plain widget owned by its parent.
#pragma once

#include "ui/trim/trim_timeline_geometry.h"

#include <QWidget>
#include <functional>
#include <optional>

namespace tavrelune::trim {

class TrimTimelineView : public QWidget {
    Q_OBJECT

public:
    struct State {
        double duration = 1.0;  // negative: taken as 0 (empty control)
        double inPoint = 0;
        double outPoint = 1.0;
        double playhead = 0;
        bool enabled = true;  // accepts drags; dimmed when false
    };

    explicit TrimTimelineView(QWidget* parent = nullptr);

    // Takes new times (unclamped: out-of-range times are drawn at the ends)
    // and redraws.
    void setState(State state);
    const State& state() const { return state_; }
    TrimTimelineGeometry trimGeometry() const;
    std::optional<DragTarget> dragTarget() const { return dragTarget_; }

    std::function<void(double)> onInChange;
    std::function<void(double)> onOutChange;
    std::function<void(double)> onPlayheadChange;
    std::function<void()> onScrubStart;
    std::function<void()> onScrubEnd;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool acceptsDrags() const;
    void applyDrag(QPointF point);
    void endDrag();
    void followPointer(QPointF point);

    State state_;
    std::optional<DragTarget> dragTarget_;
};

}  // namespace tavrelune::trim
