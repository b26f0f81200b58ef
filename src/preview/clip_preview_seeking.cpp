// Seeks and position reports: reports are held back from the start of a
// seek until the newest seek has landed, and come at most 30 times a second.
#include "preview/clip_preview_player.h"

#include <mpv/client.h>

#include <cmath>

namespace tavrelune {

void ClipPreviewPlayer::seek(double seconds, bool precise)
{
    if (!hasItem_ || !std::isfinite(seconds))
        return;
    ++seekGeneration_;
    ignoreTimeUpdates_ = true;
    pendingTime_.reset();
    activeSeek_ = ActiveSeek{seconds, precise, false};
    // A tolerant seek first tries the key frame before the target, which
    // needs no decoding up to the frame; seekRestarted() makes it exact
    // when that key frame lies outside the tolerance.
    issueSeek(seconds, precise);
}

void ClipPreviewPlayer::issueSeek(double seconds, bool exact)
{
    command({"seek", QByteArray::number(seconds, 'f', 6), exact ? "absolute+exact" : "absolute+keyframes"},
            seekTag | ++issuedSeekCommands_);
}

void ClipPreviewPlayer::seekRestarted()
{
    // Only the newest seek's completion counts: mpv acknowledges seek
    // commands in order and restarts playback after the ones it has taken.
    if (!activeSeek_ || acknowledgedSeekCommands_ != issuedSeekCommands_)
        return;
    if (!activeSeek_->precise && !activeSeek_->refined) {
        double landed = 0;
        if (mpv_get_property(mpv_, "time-pos", MPV_FORMAT_DOUBLE, &landed) >= 0
            && std::abs(landed - activeSeek_->target) > seekTolerance) {
            activeSeek_->refined = true;
            issueSeek(activeSeek_->target, true);
            return;
        }
    }
    activeSeek_.reset();
    ignoreTimeUpdates_ = false;
}

void ClipPreviewPlayer::timeChanged(double seconds)
{
    if (!hasItem_ || ignoreTimeUpdates_)
        return;
    pendingTime_ = seconds;
    if (reportTimer_.isActive())
        return;
    const qint64 since = sinceReport_.isValid() ? sinceReport_.nsecsElapsed() : reportIntervalNs;
    if (since >= reportIntervalNs)
        deliverTime();
    else
        reportTimer_.start(static_cast<int>((reportIntervalNs - since + 999'999) / 1'000'000));
}

void ClipPreviewPlayer::deliverTime()
{
    if (!pendingTime_)
        return;
    const double seconds = *std::exchange(pendingTime_, std::nullopt);
    if (!hasItem_ || ignoreTimeUpdates_ || !onTime)
        return;
    sinceReport_.restart();
    onTime(seconds);
}

}  // namespace tavrelune
