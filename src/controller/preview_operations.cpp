// Preview, play-all and trim hooks that the clip list, the batch and the
// adjustments call. The live player and the trim window fill these in; until
// then the preview keeps only the playhead memory per clip.
#include "controller/app_model.h"

namespace tavrelune {

void AppModel::loadSelectedPreview()
{
    persistPlayhead();
    isPreviewing_ = false;
    showingOriginal_ = false;
    const auto clip = selectedClip();
    if (!clip) {
        clearPreview();
        return;
    }
    clock_.setSeconds(playAllAfterLoad_ ? clip->effectiveInPoint() : clip->playheadInWindow());
    liveGrade_.copyFrom(*clip);
    playAllAfterLoad_ = false;
}

void AppModel::clearPreview()
{
    clock_.setSeconds(0);
    clock_.setIsPlaying(false);
    clock_.setIsPlayable(false);
    sourceFrameURL_.reset();
    if (!sourcePreview_.isNull()) {
        sourcePreview_ = QImage();
        Q_EMIT sourcePreviewChanged();
    }
    if (!gradedPreview_.isNull()) {
        gradedPreview_ = QImage();
        Q_EMIT gradedPreviewChanged();
    }
}

void AppModel::persistPlayhead()
{
    const auto clip = selectedClip();
    if (!clip || !clip->duration || !(*clip->duration > 0))
        return;
    const double fraction = std::clamp(clock_.seconds() / *clip->duration, 0.0, 1.0);
    updateClip(clip->id, [fraction](ClipItem& stored) { stored.previewFraction = fraction; });
}

void AppModel::showTrimEditor()
{
    if (!selectedClip())
        return;
    pausePlayback(true);
    ++trimWindowToken_;
    Q_EMIT trimWindowTokenChanged();
}

void AppModel::pausePlayback(bool stopPlayAll)
{
    clock_.setIsPlaying(false);
    persistPlayhead();
    if (stopPlayAll) {
        setIsPlayingAll(false);
        playAllAfterLoad_ = false;
        consumedPlayAllAdvance_ = false;
    }
}

// Filled in by the live player.
void AppModel::scheduleFrameExtract(bool) {}
void AppModel::pushLiveGradeToPreview() {}
void AppModel::refreshFallbackStill() {}
void AppModel::updatePreviewTime(double) {}
void AppModel::beginScrubbing() {}
void AppModel::endScrubbing() {}
void AppModel::startPlayback() {}
void AppModel::handlePlayerTime(double) {}
void AppModel::startPlayAll() {}
void AppModel::finishClipForPlayAll() {}
void AppModel::playNextInSequence() {}
void AppModel::trimEditorAppeared() { trimEditorVisible_ = true; }
void AppModel::trimEditorDisappeared() { trimEditorVisible_ = false; }
void AppModel::loadTrimPreview() {}
void AppModel::toggleTrimPlayback() {}
void AppModel::startTrimPlayback() {}
void AppModel::beginTrimScrubbing() {}
void AppModel::updateTrimPlayhead(double) {}
void AppModel::endTrimScrubbing() {}
void AppModel::updateInPoint(double, bool) {}
void AppModel::updateOutPoint(double, bool) {}
void AppModel::applyTrimToMainPreview() {}
void AppModel::handleTrimPlayerTime(double) {}
void AppModel::handleTrimPlaybackEnded() {}

}  // namespace tavrelune
