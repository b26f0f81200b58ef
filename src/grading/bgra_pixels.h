// Views of 8-bit BGRA pixel buffers: bytes blue, green, red, alpha in memory,
// which is ffmpeg's "bgra" and QImage::Format_ARGB32 on little-endian
// machines. Colour values are straight (not premultiplied by alpha).
//
// The views own nothing; the caller keeps the buffer alive while one is in
// use. `stride` is the distance in bytes from one row to the next.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tavrelune {

struct BgraPixels {
    std::uint8_t* data = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;

    std::uint8_t* row(int y) const { return data + y * stride; }
};

struct ConstBgraPixels {
    const std::uint8_t* data = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;

    ConstBgraPixels() = default;
    ConstBgraPixels(const std::uint8_t* data, int width, int height, std::ptrdiff_t stride)
        : data(data), width(width), height(height), stride(stride) {}
    ConstBgraPixels(const BgraPixels& pixels)  // NOLINT: a writable view is readable
        : data(pixels.data), width(pixels.width), height(pixels.height), stride(pixels.stride) {}

    const std::uint8_t* row(int y) const { return data + y * stride; }
};

}  // namespace tavrelune
