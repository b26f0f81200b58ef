// The main preview's live view: the player's frames with the player's grade
// (exposure, contrast, saturation, temperature and LUT), or without it while
// `compareOriginal` is held.
//
// Frames are graded off the GUI thread by the view's own FrameGrader; the
// GUI thread only uploads and draws finished pictures. While the view sets
// the player's `onNeedsRedraw`, a grade change regrades the frame on screen
// at once, also while paused.
//
// Threading: main thread only. Ownership: holds the player weakly; the
// player reaches the view only through the weak redraw callback.
#pragma once

#include "preview/frame_grader.h"
#include "ui/preview/video_frame_view.h"

#include <atomic>

namespace tavrelune {

class GradedPreviewView : public VideoFrameView {
    Q_OBJECT

public:
    explicit GradedPreviewView(ClipPreviewPlayer* player = nullptr, bool compareOriginal = false,
                               QWidget* parent = nullptr);
    ~GradedPreviewView() override;

    bool compareOriginal() const { return compareOriginal_; }
    void setCompareOriginal(bool compare);
    // Takes the newest frame and grades the frame on screen again with the
    // player's current grade.
    void redraw();

protected:
    void frameArrived(std::shared_ptr<const VideoFrame> frame) override;
    void contentCleared() override;
    void playerAttached(ClipPreviewPlayer* player) override;
    void showEvent(QShowEvent* event) override;

private:
    void regrade();

    bool compareOriginal_ = false;
    std::shared_ptr<const VideoFrame> source_;
    bool regradeWhenShown_ = false;
    std::atomic<bool> resultQueued_{false};
    std::unique_ptr<FrameGrader> grader_;
};

}  // namespace tavrelune
