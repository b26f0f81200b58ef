// AVX2 + FMA forms of the grade kernels. Compiled for every x86-64 build and
// chosen at run time, so the baseline binary still runs on any x86-64.
#include "grading/grade_kernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

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

// One pixel through the prepared cube; lanes blue, green, red, 0 as ints.
TAVRELUNE_AVX2 inline __m128i cubePixel(const std::uint8_t* pixel, const CubeProgram& program)
{
    const CubeStep& r = program.red[pixel[2]];
    const CubeStep& g = program.green[pixel[1]];
    const CubeStep& b = program.blue[pixel[0]];
    const float* base = program.entries + r.offset + g.offset + b.offset;
    const std::uint32_t gs = program.greenStride;
    const std::uint32_t bs = program.blueStride;
    // Entries r and r + 1 are adjacent, so each load holds both red samples
    // of one green/blue corner; red is blended last, across the halves.
    const __m256 c00 = _mm256_loadu_ps(base);
    const __m256 c10 = _mm256_loadu_ps(base + gs);
    const __m256 c01 = _mm256_loadu_ps(base + bs);
    const __m256 c11 = _mm256_loadu_ps(base + gs + bs);
    const __m256 tg = _mm256_broadcast_ss(&g.weight);
    const __m256 tb = _mm256_broadcast_ss(&b.weight);
    const __m256 face0 = _mm256_fmadd_ps(tg, _mm256_sub_ps(c10, c00), c00);
    const __m256 face1 = _mm256_fmadd_ps(tg, _mm256_sub_ps(c11, c01), c01);
    const __m256 edge = _mm256_fmadd_ps(tb, _mm256_sub_ps(face1, face0), face0);
    const __m128 low = _mm256_castps256_ps128(edge);
    const __m128 high = _mm256_extractf128_ps(edge, 1);
    const __m128 value = _mm_fmadd_ps(_mm_broadcast_ss(&r.weight), _mm_sub_ps(high, low), low);
    const __m128 clamped = _mm_min_ps(_mm_max_ps(value, _mm_setzero_ps()), _mm_set1_ps(255));
    return _mm_cvtps_epi32(clamped);
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
    const __m128i alphaMask = _mm_set1_epi32(static_cast<int>(0xFF000000u));
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const std::uint8_t* pixel = in + 4 * i;
        // Read alpha before anything is written: `out` may be `in`.
        const __m128i alpha =
            _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixel)), alphaMask);
        const __m128i p0 = cubePixel(pixel, program);
        const __m128i p1 = cubePixel(pixel + 4, program);
        const __m128i p2 = cubePixel(pixel + 8, program);
        const __m128i p3 = cubePixel(pixel + 12, program);
        // Saturating packs; the fourth lane of every entry is 0.
        const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * i), _mm_or_si128(bytes, alpha));
    }
    cubeRowPortable(in + 4 * i, out + 4 * i, count - i, program);
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
