#include "preview/redraw_pacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace tavrelune;

namespace {

constexpr qint64 ms = 1'000'000;

// Frames arrive at `arrivals` into a queue of `capacity` (the oldest is
// dropped when it overflows); the view draws the next one when the pacer
// allows, its timer firing up to `timerLateNs` late, and cannot draw at all
// for `stallNs` out of every `stallEveryNs`.
struct Outcome {
    int dropped = 0;
    std::vector<qint64> redraws;
};

Outcome simulate(const std::vector<qint64>& arrivals, std::size_t capacity, qint64 timerLateNs,
                 qint64 stallNs = 0, qint64 stallEveryNs = 1'000'000 * ms)
{
    RedrawPacer pacer(60);
    std::mt19937 random(11);
    std::uniform_int_distribution<qint64> late(0, timerLateNs);
    Outcome outcome;
    std::size_t waiting = 0;
    std::size_t next = 0;
    qint64 now = 0;
    while (next < arrivals.size() || waiting > 0) {
        qint64 due = INT64_MAX;
        if (waiting > 0) {
            const qint64 delay = pacer.delayNs(now);
            due = now + (delay == 0 ? 0 : (delay + ms - 1) / ms * ms + late(random));
            if (due % stallEveryNs < stallNs)
                due += stallNs - due % stallEveryNs;
        }
        if (next < arrivals.size() && arrivals[next] <= due) {
            now = std::max(now, arrivals[next++]);
            if (++waiting > capacity) {
                --waiting;
                ++outcome.dropped;
            }
            continue;
        }
        now = due;
        pacer.redrew(now);
        outcome.redraws.push_back(now);
        --waiting;
    }
    return outcome;
}

std::vector<qint64> footage(qint64 period, qint64 length, qint64 jitterNs = 0)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<qint64> jitter(-jitterNs, jitterNs);
    std::vector<qint64> arrivals;
    for (qint64 t = 1000 * ms; t < 1000 * ms + length; t += period)
        arrivals.push_back(std::max<qint64>(arrivals.empty() ? 0 : arrivals.back(), t + jitter(random)));
    return arrivals;
}

}  // namespace

TEST(RedrawPacer, KeepsEveryFrameOfJitteryFootageAtTheMaximumRate)
{
    const std::vector<qint64> arrivals = footage(1'000'000'000LL / 60, 10'000 * ms, 3 * ms);
    // Even with no room for a second waiting frame.
    const Outcome outcome = simulate(arrivals, 1, 2 * ms);
    EXPECT_EQ(outcome.dropped, 0);
    EXPECT_EQ(outcome.redraws.size(), arrivals.size());
}

TEST(RedrawPacer, CatchesUpAfterAStallOfAFewFrames)
{
    // A 45 ms stall every 100 ms: the three frames that wait each time are
    // all shown before the next stall.
    const std::vector<qint64> arrivals = footage(1'000'000'000LL / 60, 10'000 * ms, 2 * ms);
    const Outcome outcome = simulate(arrivals, 3, 2 * ms, 45 * ms, 100 * ms);
    EXPECT_EQ(outcome.dropped, 0);
}

TEST(RedrawPacer, HoldsFasterFootageToTheMaximumInAnySecond)
{
    for (const qint64 period : {1'000'000'000LL / 120, 5 * ms, ms / 2}) {
        const Outcome outcome = simulate(footage(period, 3000 * ms), 1, 0, 40 * ms, 700 * ms);
        const auto& redraws = outcome.redraws;
        for (std::size_t first = 0; first < redraws.size(); ++first) {
            const auto end = std::lower_bound(redraws.begin(), redraws.end(), redraws[first] + 1'000'000'000LL);
            EXPECT_LE(end - (redraws.begin() + first), 60 + RedrawPacer::catchUpSlots + 1) << "period " << period;
        }
        EXPECT_GE(redraws.size(), 175u) << "period " << period;
    }
}

TEST(RedrawPacer, FirstRedrawAndRedrawAfterAPauseAreImmediate)
{
    RedrawPacer pacer(60);
    EXPECT_EQ(pacer.delayNs(5 * ms), 0);
    pacer.redrew(5 * ms);
    EXPECT_GT(pacer.delayNs(6 * ms), 0);
    EXPECT_EQ(pacer.delayNs(2000 * ms), 0);
}
