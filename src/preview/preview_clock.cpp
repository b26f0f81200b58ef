#include "preview/preview_clock.h"

namespace tavrelune {

void PreviewClock::setSeconds(double seconds)
{
    if (seconds_ == seconds)
        return;
    seconds_ = seconds;
    Q_EMIT secondsChanged(seconds);
}

void PreviewClock::setIsPlaying(bool playing)
{
    if (isPlaying_ == playing)
        return;
    isPlaying_ = playing;
    Q_EMIT isPlayingChanged(playing);
}

void PreviewClock::setIsPlayable(bool playable)
{
    if (isPlayable_ == playable)
        return;
    isPlayable_ = playable;
    Q_EMIT isPlayableChanged(playable);
}

void PreviewClock::setIsScrubbing(bool scrubbing)
{
    if (isScrubbing_ == scrubbing)
        return;
    isScrubbing_ = scrubbing;
    Q_EMIT isScrubbingChanged(scrubbing);
}

}  // namespace tavrelune
