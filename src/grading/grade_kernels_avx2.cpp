// AVX2 + FMA forms of the grade kernels. Compiled for every x86-64 build and
// chosen at run time, so the baseline binary still runs on any x86-64.
#include "grading/grade_kernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <algorithm>
#include <immintrin.h>

#define TAVRELUNE_AVX2 __attribute__((target("avx2,fma")))

namespace tavrelune {

namespace {

TAVRELUNE_AVX2 inline __m256i affineChannel(const __m256 (&m)[3], __m256 bias, __m256 b, __m256 g,
                                             __m256 r)
{
    const __m256 sum = _mm256_fmadd_ps(m[0], b, _mm256_fmadd_ps(m[1], g, _mm256_fmadd_ps(m[2], r, bias)));
    // max(sum, 0) gives 0 for not-a-number, as the portable kernel does.
    const __m256 clamped = _mm256_min_ps(_mm256_max_ps(sum, _mm256_setzero_ps()), _mm256_set1_ps(255));
    return _mm256_cvtps_epi32(clamped);
}

// The cube kernel works on runs of pixels in two passes. The first places
// every pixel of the run, eight at a time in vector registers: the byte
// offset of its cell's lower corner and the weights of the upper entries,
// from the program's position scale (the same cells and weights as its
// tables, but for float rounding). The second reads each pixel's corners with
// plain loads from offsets that were ready long before, so no lookup waits on
// that arithmetic and no gather is needed.
constexpr int cubeRun = 128;

struct CubePlaces {
    alignas(32) std::int32_t offset[cubeRun];
    alignas(32) float green[cubeRun];
    alignas(32) float blue[cubeRun];
    alignas(32) float red[cubeRun];
};

struct CubeAxes {
    __m256 scale;   // position per 8-bit step
    __m256 top;     // N − 1
    __m256 lowest;  // N − 2, the last lower entry
    __m256 greenBytes;
    __m256 blueBytes;
};

struct CubeEntries {
    const char* base;
    std::ptrdiff_t greenDifference;  // bytes from an entry to its green difference
    std::ptrdiff_t blueBytes;
};

struct AxisPlace {
    __m256 lower;  // index of the lower entry, as a float
    __m256 weight;
};

TAVRELUNE_AVX2 inline AxisPlace placeOnAxis(__m256i pixels, int shift, const CubeAxes& axes)
{
    const __m256i bytes = _mm256_and_si256(_mm256_srli_epi32(pixels, shift), _mm256_set1_epi32(0xFF));
    // The scale is finite and not negative, so no lane is ever not-a-number.
    const __m256 position = _mm256_min_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(bytes), axes.scale), axes.top);
    const __m256 lower = _mm256_min_ps(_mm256_floor_ps(position), axes.lowest);
    return {lower, _mm256_sub_ps(position, lower)};
}

TAVRELUNE_AVX2 inline void placeEight(const std::uint8_t* pixel, int at, const CubeAxes& axes, CubePlaces& places)
{
    const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixel));
    const AxisPlace blue = placeOnAxis(pixels, 0, axes);
    const AxisPlace green = placeOnAxis(pixels, 8, axes);
    const AxisPlace red = placeOnAxis(pixels, 16, axes);
    // Below 8 MB (64 points) and so 2^24: exact in floats.
    const __m256 redBytes = _mm256_mul_ps(red.lower, _mm256_set1_ps(16));
    const __m256 offset =
        _mm256_fmadd_ps(blue.lower, axes.blueBytes, _mm256_fmadd_ps(green.lower, axes.greenBytes, redBytes));
    _mm256_store_si256(reinterpret_cast<__m256i*>(places.offset + at), _mm256_cvtps_epi32(offset));
    _mm256_store_ps(places.green + at, green.weight);
    _mm256_store_ps(places.blue + at, blue.weight);
    _mm256_store_ps(places.red + at, red.weight);
}

// Both red samples of one pixel, blended along green, then blue: entries r
// and r + 1 are adjacent, so each load holds two reds, of the entries at the
// lower green index or of their differences to the upper one.
TAVRELUNE_AVX2 inline __m256 redEdge(const CubeEntries& cube, const CubePlaces& places, int at)
{
    const char* corner = cube.base + places.offset[at];
    const char* nextBlue = corner + cube.blueBytes;
    const __m256 c00 = _mm256_loadu_ps(reinterpret_cast<const float*>(corner));
    const __m256 greenDiff0 = _mm256_loadu_ps(reinterpret_cast<const float*>(corner + cube.greenDifference));
    const __m256 c01 = _mm256_loadu_ps(reinterpret_cast<const float*>(nextBlue));
    const __m256 greenDiff1 = _mm256_loadu_ps(reinterpret_cast<const float*>(nextBlue + cube.greenDifference));
    const __m256 tg = _mm256_broadcast_ss(&places.green[at]);
    const __m256 tb = _mm256_broadcast_ss(&places.blue[at]);
    const __m256 face0 = _mm256_fmadd_ps(tg, greenDiff0, c00);
    const __m256 face1 = _mm256_fmadd_ps(tg, greenDiff1, c01);
    return _mm256_fmadd_ps(tb, _mm256_sub_ps(face1, face0), face0);
}

// Pixels `at` and `at + 4` of a group of eight starting at `group`, blended
// along red (low halves towards high ones) and rounded: blue, green, red, 0
// as ints, the first pixel in the low half.
TAVRELUNE_AVX2 inline __m256i finishPair(const CubeEntries& cube, const CubePlaces& places, int group, int at,
                                         __m256 redWeights)
{
    const __m256 first = redEdge(cube, places, group + at);
    const __m256 second = redEdge(cube, places, group + at + 4);
    const __m256 low = _mm256_insertf128_ps(first, _mm256_castps256_ps128(second), 1);
    const __m256 high = _mm256_permute2f128_ps(first, second, 0x31);
    const __m256 weight =
        _mm256_permutevar8x32_ps(redWeights, _mm256_setr_epi32(at, at, at, at, at + 4, at + 4, at + 4, at + 4));
    const __m256 value = _mm256_fmadd_ps(weight, _mm256_sub_ps(high, low), low);
    // Only the top needs clamping: the packs saturate, and a value below
    // INT_MIN or not a number converts to INT_MIN, which packs to 0. With the
    // constant first, min passes not-a-number through.
    return _mm256_cvtps_epi32(_mm256_min_ps(_mm256_set1_ps(255), value));
}

}  // namespace

TAVRELUNE_AVX2 void affineRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count,
                                   const AffineProgram& program)
{
    __m256 m[3][3];
    __m256 bias[3];
    for (int o = 0; o < 3; ++o) {
        for (int i = 0; i < 3; ++i)
            m[o][i] = _mm256_set1_ps(program.matrix[o][i]);
        bias[o] = _mm256_set1_ps(program.bias[o]);
    }
    const __m256i low8 = _mm256_set1_epi32(0xFF);
    const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + 4 * i));
        const __m256 b = _mm256_cvtepi32_ps(_mm256_and_si256(pixels, low8));
        const __m256 g = _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(pixels, 8), low8));
        const __m256 r = _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(pixels, 16), low8));
        const __m256i blue = affineChannel(m[0], bias[0], b, g, r);
        const __m256i green = affineChannel(m[1], bias[1], b, g, r);
        const __m256i red = affineChannel(m[2], bias[2], b, g, r);
        const __m256i result = _mm256_or_si256(
            _mm256_or_si256(blue, _mm256_slli_epi32(green, 8)),
            _mm256_or_si256(_mm256_slli_epi32(red, 16), _mm256_and_si256(pixels, alphaMask)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * i), result);
    }
    affineRowPortable(in + 4 * i, out + 4 * i, count - i, program);
}

TAVRELUNE_AVX2 void cubeRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count,
                                 const CubeProgram& program)
{
    const CubeEntries cube{reinterpret_cast<const char*>(program.entries),
                           static_cast<std::ptrdiff_t>(program.greenDifference) * 4,
                           static_cast<std::ptrdiff_t>(program.blueStride) * 4};
    const auto top = static_cast<float>(program.size - 1);
    const CubeAxes axes{_mm256_set1_ps(program.positionScale), _mm256_set1_ps(top), _mm256_set1_ps(top - 1),
                        _mm256_set1_ps(static_cast<float>(program.greenStride) * 4),
                        _mm256_set1_ps(static_cast<float>(cube.blueBytes))};
    const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    CubePlaces places;
    int done = 0;
    while (count - done >= 8) {
        const int run = std::min(cubeRun, (count - done) & ~7);
        const std::uint8_t* runIn = in + 4 * done;
        std::uint8_t* runOut = out + 4 * done;
        for (int at = 0; at < run; at += 8)
            placeEight(runIn + 4 * at, at, axes, places);
        for (int at = 0; at < run; at += 8) {
            // Alpha is read before these eight are written: `out` may be `in`.
            const __m256i alpha =
                _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(runIn + 4 * at)), alphaMask);
            const __m256 red = _mm256_load_ps(places.red + at);
            // Pairs (0, 4), (1, 5), … leave the lane-wise packs in order.
            const __m256i p04 = finishPair(cube, places, at, 0, red);
            const __m256i p15 = finishPair(cube, places, at, 1, red);
            const __m256i p26 = finishPair(cube, places, at, 2, red);
            const __m256i p37 = finishPair(cube, places, at, 3, red);
            const __m256i bytes = _mm256_packus_epi16(_mm256_packs_epi32(p04, p15), _mm256_packs_epi32(p26, p37));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(runOut + 4 * at), _mm256_or_si256(bytes, alpha));
        }
        done += run;
    }
    cubeRowPortable(in + 4 * done, out + 4 * done, count - done, program);
}

}  // namespace tavrelune

#else

namespace tavrelune {

void affineRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count, const AffineProgram& program)
{
    affineRowPortable(in, out, count, program);
}

void cubeRowAvx2(const std::uint8_t* in, std::uint8_t* out, int count, const CubeProgram& program)
{
    cubeRowPortable(in, out, count, program);
}

}  // namespace tavrelune

#endif
