// Play-all: every clip in list order, each within its trim window, selected
// in turn so the inspector and the preview follow.
#include "controller/app_model.h"

namespace tavrelune {

void AppModel::startPlayAll()
{
    if (clips_.isEmpty() || isConverting_)
        return;
    setIsPlayingAll(true);
    consumedPlayAllAdvance_ = false;
    const ClipItem first = clips_.first();
    if (first.id == selectedClipID_) {
        clock_.setSeconds(first.effectiveInPoint());
        persistPlayhead();
        if (clock_.isPlayable()) {  // already loaded: no reload
            previewPlayer_->seek(first.effectiveInPoint(), true);
            startPlayback();
            return;
        }
        playAllAfterLoad_ = true;
        loadSelectedPreview();
        return;
    }
    commitLiveGrade();
    setSelectedClipID(first.id);
    playAllAfterLoad_ = true;
    if (trimEditorVisible_)
        loadTrimPreview();
    loadSelectedPreview();
}

// Both the out point (handlePlayerTime) and the end of the file (the
// player's end report) may signal one clip's end; the run advances once.
void AppModel::finishClipForPlayAll()
{
    if (isPlayingAll_) {
        if (!consumedPlayAllAdvance_) {
            consumedPlayAllAdvance_ = true;
            playNextInSequence();
        }
        return;
    }
    previewPlayer_->pause();
    clock_.setIsPlaying(false);
    persistPlayhead();
    if (const auto clip = selectedClip(); clip && clip->duration) {
        clock_.setSeconds(clip->effectiveOutPoint());
        persistPlayhead();
    }
}

void AppModel::playNextInSequence()
{
    const auto position = selectedIndex();
    if (!isPlayingAll_ || !position) {
        pausePlayback(true);
        return;
    }
    persistPlayhead();
    const int next = *position + 1;
    if (next < clips_.size()) {
        commitLiveGrade();
        setSelectedClipID(clips_[next].id);
        playAllAfterLoad_ = true;
        if (trimEditorVisible_)
            loadTrimPreview();
        loadSelectedPreview();
        return;
    }
    // The run is complete: the last clip stays selected, at its out point.
    pausePlayback(true);
    if (const auto clip = selectedClip(); clip && clip->duration) {
        clock_.setSeconds(clip->effectiveOutPoint());
        persistPlayhead();
    }
}

void AppModel::pausePlayback(bool stopPlayAll)
{
    previewPlayer_->pause();
    clock_.setIsPlaying(false);
    persistPlayhead();
    if (stopPlayAll) {
        setIsPlayingAll(false);
        playAllAfterLoad_ = false;
        consumedPlayAllAdvance_ = false;
    }
}

}  // namespace tavrelune
