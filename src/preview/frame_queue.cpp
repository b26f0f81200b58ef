#include "preview/frame_queue.h"

#include <algorithm>

namespace tavrelune {

FrameQueue::FrameQueue(Overflow overflow, std::size_t capacity)
    : overflow_(overflow), capacity_(std::max<std::size_t>(capacity, 1))
{
}

void FrameQueue::push(std::shared_ptr<const VideoFrame> frame)
{
    if (!frame)
        return;
    if (!frames_.empty() && frames_.back()->sequence == frame->sequence) {
        frames_.back() = std::move(frame);
        return;
    }
    if (frames_.size() >= capacity_ && overflow_ == Overflow::keepNewest)
        frames_.clear();
    frames_.push_back(std::move(frame));
    while (frames_.size() > capacity_)
        frames_.pop_front();
}

std::shared_ptr<const VideoFrame> FrameQueue::pop()
{
    if (frames_.empty())
        return nullptr;
    std::shared_ptr<const VideoFrame> frame = std::move(frames_.front());
    frames_.pop_front();
    return frame;
}

std::vector<std::shared_ptr<const VideoFrame>> FrameQueue::after(std::uint64_t sequence) const
{
    if (frames_.empty())
        return {};
    if (sequence == 0)
        return {frames_.back()};
    std::vector<std::shared_ptr<const VideoFrame>> newer;
    for (const auto& frame : frames_)
        if (frame->sequence > sequence)
            newer.push_back(frame);
    return newer;
}

std::shared_ptr<const VideoFrame> FrameQueue::newest() const
{
    return frames_.empty() ? nullptr : frames_.back();
}

}  // namespace tavrelune
