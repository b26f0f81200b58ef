// A short, ordered queue of frames on their way to the screen.
//
// Frames come at the footage's rate but are taken on the GUI thread, which
// now and then is busy for longer than a frame (drawing the window, a
// layout). Keeping the few newest frames in order, instead of only the
// newest, lets the consumer catch up after such a hiccup without skipping a
// picture; a consumer that stays behind still sees frames no older than the
// capacity allows.
//
// When a frame comes with the queue full, the consumer is behind for longer
// than a hiccup: a history (`Overflow::dropOldest`) forgets its oldest
// frame, a queue to the screen (`Overflow::keepNewest`) forgets the whole
// backlog, so a slow machine shows the newest frame rather than lagging
// the sound by the whole queue.
//
// A frame with the sequence number of the newest one replaces it: that is
// the same picture again (a regrade of a paused frame), and only the newest
// grade of it matters.
//
// Not thread-safe: the owner guards it. Holds frames by shared_ptr, so a
// queued frame's buffer is not reused by its pool.
#pragma once

#include "preview/video_frame.h"

#include <deque>
#include <memory>
#include <vector>

namespace tavrelune {

class FrameQueue {
public:
    static constexpr std::size_t defaultCapacity = 3;
    enum class Overflow { dropOldest, keepNewest };
    explicit FrameQueue(Overflow overflow, std::size_t capacity = defaultCapacity);

    void push(std::shared_ptr<const VideoFrame> frame);
    // The oldest frame, removed; none when empty.
    std::shared_ptr<const VideoFrame> pop();
    // The frames after `sequence`, oldest first; only the newest when
    // `sequence` is 0 (a consumer that has had none yet starts at the newest).
    std::vector<std::shared_ptr<const VideoFrame>> after(std::uint64_t sequence) const;
    std::shared_ptr<const VideoFrame> newest() const;
    bool empty() const { return frames_.empty(); }
    std::size_t size() const { return frames_.size(); }
    void clear() { frames_.clear(); }

private:
    Overflow overflow_;
    std::size_t capacity_;
    std::deque<std::shared_ptr<const VideoFrame>> frames_;
};

}  // namespace tavrelune
