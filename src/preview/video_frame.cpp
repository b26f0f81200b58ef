#include "preview/video_frame.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace tavrelune {

namespace {

constexpr std::ptrdiff_t alignment = 64;

std::ptrdiff_t alignedStride(int width)
{
    const std::ptrdiff_t bytes = static_cast<std::ptrdiff_t>(std::max(width, 1)) * 4;
    return (bytes + alignment - 1) / alignment * alignment;
}

}  // namespace

void VideoFrame::Free::operator()(std::uint8_t* bytes) const
{
    std::free(bytes);
}

VideoFrame::VideoFrame(int width, int height)
    : width_(std::max(width, 1)), height_(std::max(height, 1)), stride_(alignedStride(width))
{
    // Renderers may write the padding after the last row's pixels too.
    const auto size = static_cast<std::size_t>(stride_ * height_);
    data_.reset(static_cast<std::uint8_t*>(std::aligned_alloc(alignment, size)));
    if (!data_)
        throw std::bad_alloc();
}

void VideoFrame::makeOpaque()
{
    for (int y = 0; y < height_; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(data_.get() + y * stride_);
        for (int x = 0; x < width_; ++x)
            row[x] |= 0xFF000000u;
    }
}

QImage VideoFrame::toImage() const
{
    QImage image(width_, height_, QImage::Format_RGB32);
    for (int y = 0; y < height_; ++y)
        std::memcpy(image.scanLine(y), data_.get() + y * stride_, static_cast<std::size_t>(width_) * 4);
    return image;
}

std::shared_ptr<VideoFrame> FramePool::acquire(int width, int height)
{
    width = std::max(width, 1);
    height = std::max(height, 1);
    // Frames of another size will not be asked for again soon.
    std::erase_if(frames_, [&](const std::shared_ptr<VideoFrame>& frame) {
        return frame.use_count() == 1 && (frame->width() != width || frame->height() != height);
    });
    for (const std::shared_ptr<VideoFrame>& frame : frames_) {
        if (frame.use_count() == 1) {
            // Pairs with the release in the last consumer's reference drop, so
            // its reads of the pixels happen before they are overwritten.
            std::atomic_thread_fence(std::memory_order_acquire);
            return frame;
        }
    }
    auto frame = std::make_shared<VideoFrame>(width, height);
    if (frames_.size() < kept)
        frames_.push_back(frame);
    return frame;
}

}  // namespace tavrelune
