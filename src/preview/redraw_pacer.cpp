#include "preview/redraw_pacer.h"

#include <algorithm>

namespace tavrelune {

namespace {

// Timers fire in whole milliseconds: a redraw this close to its slot is
// taken at once rather than waiting for a timer that may fire late.
constexpr qint64 earlinessNs = 1'000'000;

}  // namespace

RedrawPacer::RedrawPacer(int maximumPerSecond) : interval_(1'000'000'000 / std::max(1, maximumPerSecond)) {}

qint64 RedrawPacer::delayNs(qint64 now) const
{
    if (!started_)
        return 0;
    const qint64 due = std::max(nextSlot_, lastRedraw_ + interval_ / 4);
    const qint64 wait = due - now;
    return wait <= earlinessNs ? 0 : wait - earlinessNs;
}

void RedrawPacer::redrew(qint64 now)
{
    // Each redraw takes the next slot, so on average there are never more
    // than the maximum; after a long pause the grid starts again from here
    // rather than allowing a burst.
    const bool afterPause = !started_ || now - nextSlot_ > catchUpSlots * interval_;
    nextSlot_ = afterPause ? now + interval_ : nextSlot_ + interval_;
    lastRedraw_ = now;
    started_ = true;
}

}  // namespace tavrelune
