// The trim editor's side of the controller: its own player and clock, and
// the in and out points of the selected clip, which stay ordered, at least
// a minimum gap apart and within the clip. Each change of a point is carried
// over to the main preview, whose playhead stays inside the trim window.
#include "controller/app_model.h"

#include <cmath>

namespace tavrelune {

namespace {

// Half the clip, but from 0.04 s to 0.12 s.
double minimumGap(double duration)
{
    return std::min(std::max(duration / 2, 0.04), 0.12);
}

}  // namespace

void AppModel::showTrimEditor()
{
    if (!selectedClip())
        return;
    pausePlayback(true);
    ++trimWindowToken_;
    Q_EMIT trimWindowTokenChanged();
}

void AppModel::trimEditorAppeared()
{
    trimEditorVisible_ = true;
    loadTrimPreview();
}

void AppModel::trimEditorDisappeared()
{
    trimEditorVisible_ = false;
    trimPlayer_->pause();
    trimClock_.setIsPlaying(false);
    trimPlayer_->unload();
    trimClock_.setIsPlayable(false);
    trimClock_.setSeconds(0);
    trimClock_.setIsPlaying(false);
}

void AppModel::loadTrimPreview()
{
    trimPlayer_->pause();
    trimClock_.setIsPlaying(false);
    const auto clip = selectedClip();
    if (!trimEditorVisible_ || !clip) {
        trimPlayer_->unload();
        trimClock_.setIsPlayable(false);
        trimClock_.setSeconds(0);
        return;
    }
    double seconds = std::max(trimClock_.seconds(), 0.0);
    if (clip->duration)
        seconds = std::min(seconds, *clip->duration);
    trimClock_.setSeconds(seconds);
    if (previews_)
        runTrimLoad(*clip);  // runs on; a stale one finds the selection changed
}

QCoro::Task<void> AppModel::runTrimLoad(ClipItem clip)
{
    QPointer<AppModel> self(this);
    const bool playable = co_await trimPlayer_->load(clip.url, clip.color);
    if (!self || !trimEditorVisible_ || selectedClipID_ != clip.id)
        co_return;
    trimClock_.setIsPlayable(playable);
    if (clip.duration && *clip.duration > 0)
        trimClock_.setSeconds(std::min(trimClock_.seconds(), *clip.duration));
    if (playable)
        trimPlayer_->seek(trimClock_.seconds(), true);
}

void AppModel::toggleTrimPlayback()
{
    if (!trimClock_.isPlaying()) {
        startTrimPlayback();
        return;
    }
    trimPlayer_->pause();
    trimClock_.setIsPlaying(false);
}

void AppModel::startTrimPlayback()
{
    const auto clip = selectedClip();
    if (!trimClock_.isPlayable() || isConverting_ || !clip)
        return;
    previewPlayer_->pause();  // one player plays at a time
    clock_.setIsPlaying(false);
    persistPlayhead();
    // Trim playback runs through the whole file; from its very end it
    // starts over.
    if (clip->duration && *clip->duration > 0 && trimClock_.seconds() >= *clip->duration - 0.04) {
        trimClock_.setSeconds(0);
        trimPlayer_->seek(0, true);
    }
    trimPlayer_->play();
    trimClock_.setIsPlaying(true);
}

void AppModel::handleTrimPlayerTime(double seconds)
{
    if (!trimClock_.isPlaying() || isTrimScrubbing_)
        return;
    const auto clip = selectedClip();
    if (clip && clip->duration)
        seconds = std::min(std::max(seconds, 0.0), std::max(*clip->duration, 0.0));
    trimClock_.setSeconds(seconds);
}

void AppModel::handleTrimPlaybackEnded()
{
    trimPlayer_->pause();
    trimClock_.setIsPlaying(false);
    if (const auto clip = selectedClip(); clip && clip->duration)
        trimClock_.setSeconds(*clip->duration);
}

void AppModel::beginTrimScrubbing()
{
    if (trimClock_.isPlaying()) {
        trimPlayer_->pause();
        trimClock_.setIsPlaying(false);
    }
    isTrimScrubbing_ = true;
    trimClock_.setIsScrubbing(true);
}

void AppModel::updateTrimPlayhead(double seconds)
{
    const auto clip = selectedClip();
    if (!clip || !clip->duration || !(*clip->duration > 0) || !std::isfinite(seconds))
        return;
    const double position = std::min(std::max(seconds, 0.0), *clip->duration);
    trimClock_.setSeconds(position);
    trimPlayer_->seek(position, !isTrimScrubbing_);
}

void AppModel::endTrimScrubbing()
{
    isTrimScrubbing_ = false;
    trimClock_.setIsScrubbing(false);
    trimPlayer_->seek(trimClock_.seconds(), true);
}

void AppModel::updateInPoint(double seconds, bool allowPush)
{
    const auto index = selectedIndex();
    if (!index || !std::isfinite(seconds))
        return;
    const ClipItem clip = clips_[*index];
    if (!clip.duration || !(*clip.duration > 0))
        return;
    const double duration = *clip.duration;
    const double gap = minimumGap(duration);
    double in = std::min(std::max(seconds, 0.0), duration - gap);
    const double currentOut = std::min(std::max(clip.outPoint.value_or(duration), 0.12), duration);
    std::optional<double> pushedOut;
    if (in > currentOut - gap) {
        if (allowPush)
            pushedOut = std::min(in + gap, duration);
        else
            in = std::max(currentOut - gap, 0.0);
    }
    updateClip(clip.id, [&](ClipItem& stored) {
        if (pushedOut)
            stored.outPoint = *pushedOut;
        stored.inPoint = in;
    });
    trimClock_.setSeconds(in);
    if (trimEditorVisible_)
        trimPlayer_->seek(in, !isTrimScrubbing_);
    applyTrimToMainPreview();
}

void AppModel::updateOutPoint(double seconds, bool allowPush)
{
    const auto index = selectedIndex();
    if (!index || !std::isfinite(seconds))
        return;
    const ClipItem clip = clips_[*index];
    if (!clip.duration || !(*clip.duration > 0))
        return;
    const double duration = *clip.duration;
    const double gap = minimumGap(duration);
    double out = std::min(std::max(seconds, gap), duration);
    const double currentIn = std::max(0.0, std::min(clip.inPoint, duration - 0.12));
    std::optional<double> pushedIn;
    if (out < currentIn + gap) {
        if (allowPush)
            pushedIn = std::max(out - gap, 0.0);
        else
            out = std::min(currentIn + gap, duration);
    }
    updateClip(clip.id, [&](ClipItem& stored) {
        if (pushedIn)
            stored.inPoint = *pushedIn;
        stored.outPoint = out;
    });
    trimClock_.setSeconds(out);
    if (trimEditorVisible_)
        trimPlayer_->seek(out, !isTrimScrubbing_);
    applyTrimToMainPreview();
}

void AppModel::resetTrim()
{
    const auto index = selectedIndex();
    if (!index)
        return;
    updateClip(clips_[*index].id, [](ClipItem& clip) {
        clip.inPoint = 0;
        clip.outPoint.reset();
    });
    applyTrimToMainPreview();
}

void AppModel::applyTrimToMainPreview()
{
    const auto clip = selectedClip();
    if (!clip || !clip->duration)
        return;
    const double low = clip->effectiveInPoint();
    const double high = clip->effectiveOutPoint();
    const double position = std::min(std::max(clock_.seconds(), low), high);
    if (std::abs(position - clock_.seconds()) > 0.001) {
        clock_.setSeconds(position);
        persistPlayhead();
        if (clock_.isPlayable())
            previewPlayer_->seek(position, true);
        else
            scheduleFrameExtract(true);  // takes the position just stored
    }
    if (clock_.isPlaying() && position >= high - 0.05) {
        previewPlayer_->pause();
        clock_.setIsPlaying(false);
        persistPlayhead();
    }
}

}  // namespace tavrelune
