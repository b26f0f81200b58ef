// One decoded, upright video frame of a live preview, and the pool its
// buffers come from.
//
// Pixels are 8-bit BGRA (bytes blue, green, red, alpha; alpha always 0xFF),
// rows 64-byte aligned. A frame is written once by its producer (the render
// thread or a grader) and then shared read-only across threads through
// std::shared_ptr<const VideoFrame>. `sequence` numbers the source frames a
// player rendered; a graded copy keeps the number of its source.
//
// FramePool: used by one producer thread only. It hands out a pooled frame
// again only when nobody else holds it any more, so a frame a consumer still
// holds is never overwritten.
#pragma once

#include "grading/bgra_pixels.h"

#include <QImage>
#include <cstdint>
#include <memory>
#include <vector>

namespace tavrelune {

class VideoFrame {
public:
    VideoFrame(int width, int height);
    VideoFrame(const VideoFrame&) = delete;
    VideoFrame& operator=(const VideoFrame&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    std::ptrdiff_t stride() const { return stride_; }
    std::uint8_t* data() { return data_.get(); }
    const std::uint8_t* data() const { return data_.get(); }
    BgraPixels pixels() { return {data(), width_, height_, stride_}; }
    ConstBgraPixels pixels() const { return {data(), width_, height_, stride_}; }

    // Sets every alpha byte to 0xFF (renderers leave it undefined).
    void makeOpaque();
    // A deep copy as a QImage (Format_RGB32), for tests and diagnostics.
    QImage toImage() const;

    std::uint64_t sequence = 0;

private:
    struct Free {
        void operator()(std::uint8_t* bytes) const;
    };

    int width_;
    int height_;
    std::ptrdiff_t stride_;
    std::unique_ptr<std::uint8_t[], Free> data_;
};

class FramePool {
public:
    // A frame of this size that no one else holds; its pixels are stale.
    std::shared_ptr<VideoFrame> acquire(int width, int height);

private:
    static constexpr std::size_t kept = 8;
    std::vector<std::shared_ptr<VideoFrame>> frames_;
};

}  // namespace tavrelune
