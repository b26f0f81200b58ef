// Pulls video frames out of one mpv core with the software render API, on a
// thread of its own, and keeps the newest few for the views (see
// frame_queue.h).
//
// Threading: constructed and destroyed on the main thread; `beginContent`,
// `endContent`, `latest` and `framesAfter` may be called from any thread. The render thread
// only calls mpv_render_* functions and never waits for another thread, as
// mpv requires; mpv's update callback only wakes it. `onFrame` runs on the
// render thread after each published frame and must only hand the news on.
//
// Frames are published only between `beginContent(size)` (the size the
// clip's frames have, known before its first frame) and `endContent()`; in
// between clips the thread still renders whatever mpv asks for, so mpv never
// waits on it, but nothing reaches the views.
//
// Ownership: owned by the player; it must be destroyed before the mpv core.
#pragma once

#include "preview/frame_queue.h"
#include "preview/frame_statistics.h"
#include "preview/video_frame.h"

#include <QSize>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

struct mpv_handle;
struct mpv_render_context;

namespace tavrelune {

class SwFrameRenderer {
public:
    // Creates the render context; none when mpv refuses it.
    static std::unique_ptr<SwFrameRenderer> create(mpv_handle* mpv, std::function<void()> onFrame);
    ~SwFrameRenderer();
    SwFrameRenderer(const SwFrameRenderer&) = delete;
    SwFrameRenderer& operator=(const SwFrameRenderer&) = delete;

    void beginContent(QSize frameSize);
    void endContent();
    std::shared_ptr<const VideoFrame> latest() const;
    // The kept frames newer than `sequence`, oldest first (see FrameQueue::after).
    std::vector<std::shared_ptr<const VideoFrame>> framesAfter(std::uint64_t sequence) const;
    // Between beginContent and endContent.
    bool isPublishing() const;
    void setStatistics(std::shared_ptr<FrameStatistics> statistics);

private:
    SwFrameRenderer(mpv_render_context* context, std::function<void()> onFrame);
    static void onUpdate(void* self);
    void run();
    void renderOnce();

    mpv_render_context* context_;
    std::function<void()> onFrame_;
    FramePool pool_;  // render thread only
    std::uint64_t sequence_ = 0;  // render thread only

    mutable std::mutex lock_;
    std::condition_variable wake_;
    bool updatePending_ = false;
    bool stopping_ = false;
    QSize size_{16, 16};
    bool publishing_ = false;
    std::uint64_t generation_ = 0;
    FrameQueue recent_{FrameQueue::Overflow::dropOldest};
    std::shared_ptr<FrameStatistics> statistics_;

    std::thread thread_;
};

}  // namespace tavrelune
