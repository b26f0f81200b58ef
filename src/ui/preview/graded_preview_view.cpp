#include "ui/preview/graded_preview_view.h"

#include "preview/clip_preview_player.h"

namespace tavrelune {

GradedPreviewView::GradedPreviewView(ClipPreviewPlayer* player, bool compareOriginal, QWidget* parent)
    : VideoFrameView(parent), compareOriginal_(compareOriginal)
{
    grader_ = std::make_unique<FrameGrader>([this] {
        if (!resultQueued_.exchange(true))
            QMetaObject::invokeMethod(this, [this] {
                resultQueued_ = false;
                for (std::shared_ptr<const VideoFrame>& result : grader_->takeResults())
                    present(std::move(result));
            }, Qt::QueuedConnection);
    });
    setPlayer(player);
}

GradedPreviewView::~GradedPreviewView()
{
    grader_.reset();  // no result is announced after this
}

void GradedPreviewView::playerAttached(ClipPreviewPlayer* player)
{
    player->onNeedsRedraw = [view = QPointer<GradedPreviewView>(this)] {
        if (view)
            view->redraw();
    };
}

void GradedPreviewView::setCompareOriginal(bool compare)
{
    if (compareOriginal_ == compare)
        return;
    compareOriginal_ = compare;
    redraw();
}

void GradedPreviewView::redraw()
{
    pullFrame();
    regrade();
}

void GradedPreviewView::frameArrived(std::shared_ptr<const VideoFrame> frame)
{
    source_ = std::move(frame);
    regrade();
}

void GradedPreviewView::contentCleared()
{
    source_.reset();
    grader_->clear();
}

void GradedPreviewView::regrade()
{
    if (!source_)
        return;
    // A hidden view is not drawn; grading for it would only cost time.
    if (!isVisible()) {
        regradeWhenShown_ = true;
        return;
    }
    regradeWhenShown_ = false;
    grader_->setStatistics(statistics());
    ClipPreviewPlayer* const source = player();
    grader_->submit(source_, compareOriginal_ || !source ? nullptr : source->sharedGrade());
}

void GradedPreviewView::showEvent(QShowEvent* event)
{
    VideoFrameView::showEvent(event);
    if (regradeWhenShown_)
        regrade();
}

}  // namespace tavrelune
