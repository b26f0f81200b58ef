// Seeded random images, grades and cubes shared by the grading tests.
#pragma once

#include "grading/bgra_pixels.h"
#include "grading/cube_lut.h"
#include "grading/grade_values.h"

#include <cstdint>
#include <random>
#include <vector>

namespace tavrelune::test {

// An owned BGRA image with rows padded past the pixels, so that kernels
// which ignore the stride are caught.
struct TestImage {
    int width;
    int height;
    std::ptrdiff_t stride;
    std::vector<std::uint8_t> bytes;

    TestImage(int width, int height)
        : width(width), height(height), stride(width * 4 + 12),
          bytes(static_cast<std::size_t>(stride * height), 0xEE) {}

    BgraPixels pixels() { return {bytes.data(), width, height, stride}; }
    ConstBgraPixels pixels() const { return {bytes.data(), width, height, stride}; }
};

inline TestImage randomImage(std::mt19937& random, int width, int height)
{
    TestImage image(width, height);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * 4; ++x)
            image.bytes[static_cast<std::size_t>(y * image.stride + x)] = static_cast<std::uint8_t>(byte(random));
    return image;
}

// A cube with independent random entries, somewhat beyond 0…1.
inline CubeLUT randomCube(std::mt19937& random, std::int64_t size)
{
    std::uniform_real_distribution<float> value(-0.2f, 1.2f);
    auto entries = std::make_shared<std::vector<float>>(static_cast<std::size_t>(size * size * size * 4));
    for (std::size_t i = 0; i < entries->size(); ++i)
        (*entries)[i] = i % 4 == 3 ? 1.0f : value(random);
    return CubeLUT{size, std::move(entries)};
}

// Largest difference of any channel byte between two images of one size.
inline int largestDifference(const TestImage& a, const TestImage& b)
{
    int largest = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width * 4; ++x) {
            const auto at = static_cast<std::size_t>(y * a.stride + x);
            largest = std::max(largest, std::abs(int(a.bytes[at]) - int(b.bytes[at])));
        }
    return largest;
}

}  // namespace tavrelune::test
