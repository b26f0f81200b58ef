#pragma once
// Paces a view's redraws to at most a given number per second on average.
//
// Times are nanoseconds on any monotonic clock. Not thread-safe: used by
// the view on the GUI thread only.
//
// Redraws are kept on a grid of slots one interval apart rather than held
// a whole interval after the previous redraw: a redraw that comes a little
// late (timer granularity, a busy event loop) does not push every later one
// back. After a stall of up to `catchUpSlots` intervals the slots it missed
// are used at once (no two redraws closer than a quarter interval), so the
// frames that waited meanwhile are shown instead of skipped; over any
// second there are never more than the maximum plus `catchUpSlots + 1`.
#include <QtGlobal>

namespace tavrelune {

class RedrawPacer {
public:
    static constexpr int catchUpSlots = 3;

    explicit RedrawPacer(int maximumPerSecond);

    // How long to wait from `now` before redrawing (0: at once).
    qint64 delayNs(qint64 now) const;
    // A redraw happened at `now`.
    void redrew(qint64 now);

    qint64 intervalNs() const { return interval_; }

private:
    qint64 interval_;
    qint64 nextSlot_ = 0;
    qint64 lastRedraw_ = 0;
    bool started_ = false;
};

}  // namespace tavrelune
