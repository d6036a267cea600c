#include "engine/stereo/sample_windows.h"

#include <algorithm>
#include <cstring>

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

#ifdef ZR_AVX2_KERNEL
#include <immintrin.h>
#endif

namespace zre {

namespace {

constexpr int kGroup = 4; ///< cells whose samples are fetched together

ZR_KERNEL_STEP double between(double a, double b, double c, double e, double fu, double fv)
{
    const double top = a + (b - a) * fu;
    const double bottom = c + (e - c) * fu;
    return top + (bottom - top) * fv;
}

/// Samples some cells one by one.
void sampleEach(const float* plane, std::ptrdiff_t stride, const SampledCells& cells, int begin,
                int end, float* out)
{
    for (int i = begin; i < end; ++i) {
        const float* const upper = plane + cells.first[i];
        const float* const lower = upper + stride;
        out[i] = static_cast<float>(
            between(upper[0], upper[1], lower[0], lower[1], cells.fu[i], cells.fv[i]));
    }
}

/// Two neighbouring samples from each of two places.
ZR_KERNEL_STEP Floats twoPairs(const float* one, const float* other)
{
    using Pairs = double __attribute__((vector_size(16)));
    double first = 0.0;
    double second = 0.0;
    std::memcpy(&first, one, sizeof first);
    std::memcpy(&second, other, sizeof second);
    const Pairs pairs{first, second};
    return reinterpret_cast<Floats>(pairs);
}

struct Samples
{
    float left[kChunk];
    float right[kChunk];
};

/// The sample at each place and the one behind it.
ZR_KERNEL_STEP void fetch(const float* plane, const std::int32_t* first, int size, Samples& samples)
{
    for (int i = 0; i < size; i += kGroup) {
        const Floats one = twoPairs(plane + first[i], plane + first[i + 1]);
        const Floats other = twoPairs(plane + first[i + 2], plane + first[i + 3]);
        store(__builtin_shufflevector(one, other, 0, 2, 4, 6), samples.left + i);
        store(__builtin_shufflevector(one, other, 1, 3, 5, 7), samples.right + i);
    }
}

/// Samples whole groups, at most a chunk.
ZR_MULTIVERSION void sampleGroups(const float* plane, std::ptrdiff_t stride,
                                  const SampledCells& cells, int size, float* __restrict out)
{
    Samples upper;
    Samples lower;
    fetch(plane, cells.first, size, upper);
    fetch(plane + stride, cells.first, size, lower);
    const double* const fu = cells.fu;
    const double* const fv = cells.fv;
    for (int i = 0; i < size; ++i)
        out[i] = static_cast<float>(
            between(upper.left[i], upper.right[i], lower.left[i], lower.right[i], fu[i], fv[i]));
}

#ifdef ZR_AVX2_KERNEL

/// Eight samples of a row from the window's left, in the order of `pick`.
ZR_AVX2_STEP __m256 picked(const float* row, __m256i pick)
{
    return _mm256_permutevar8x32_ps(_mm256_loadu_ps(row), pick);
}

ZR_AVX2_STEP __m256d between(__m256 upper, __m256 lower, __m256d fu, __m256d fv)
{
    const __m256d a = _mm256_cvtps_pd(_mm256_castps256_ps128(upper));
    const __m256d b = _mm256_cvtps_pd(_mm256_extractf128_ps(upper, 1));
    const __m256d c = _mm256_cvtps_pd(_mm256_castps256_ps128(lower));
    const __m256d e = _mm256_cvtps_pd(_mm256_extractf128_ps(lower, 1));
    const __m256d top = _mm256_add_pd(a, _mm256_mul_pd(_mm256_sub_pd(b, a), fu));
    const __m256d bottom = _mm256_add_pd(c, _mm256_mul_pd(_mm256_sub_pd(e, c), fu));
    return _mm256_add_pd(top, _mm256_mul_pd(_mm256_sub_pd(bottom, top), fv));
}

/// The samples of four neighbouring cells nearly always lie in a window of eight columns and three
/// rows: three loads then fetch them all, and each is picked by its place in the window.
ZR_AVX2_KERNEL void sampleWindows(const Image& src, const SampledCells& cells, float* out,
                                  std::size_t planeSize)
{
    constexpr int kSlack = 2; // columns by which a cell may lie before the first
    const int width = src.width;
    const int half = width / 2;
    const int channels = src.channels;
    const float* const source = src.data.data();
    const std::int64_t lastBase = static_cast<std::int64_t>(planeSize) - 2ll * width - 2 * kGroup;
    for (int i = 0; i + kGroup <= cells.size; i += kGroup) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cells.first + i));
        int base = cells.first[i] - kSlack;
        __m128i place = _mm_sub_epi32(first, _mm_set1_epi32(base));
        if (_mm_movemask_ps(_mm_castsi128_ps(_mm_add_epi32(place, _mm_set1_epi32(half))))) {
            base -= width; // some lie in the row above the first
            place = _mm_add_epi32(place, _mm_set1_epi32(width));
        }
        const __m128i below = _mm_cmpgt_epi32(place, _mm_set1_epi32(half));
        place = _mm_sub_epi32(place, _mm_and_si128(below, _mm_set1_epi32(width)));
        const __m128i beyond = _mm_or_si128(_mm_cmpgt_epi32(place, _mm_set1_epi32(2 * kGroup - 2)),
                                            _mm_srai_epi32(place, 31));
        if (_mm_movemask_ps(_mm_castsi128_ps(beyond)) || base < 0 || base > lastBase) {
            for (int c = 0; c < channels; ++c)
                sampleEach(src.plane(c), width, cells, i, i + kGroup,
                           out + static_cast<std::size_t>(c) * planeSize);
            continue;
        }
        const __m256i pick = _mm256_set_m128i(_mm_add_epi32(place, _mm_set1_epi32(1)), place);
        const __m256 inLower = _mm256_castsi256_ps(_mm256_set_m128i(below, below));
        const __m256d fu = _mm256_loadu_pd(cells.fu + i);
        const __m256d fv = _mm256_loadu_pd(cells.fv + i);
        const float* row = source + base;
        float* to = out + i;
        for (int c = 0; c < channels; ++c, row += planeSize, to += planeSize) {
            const __m256 first3[] = {picked(row, pick), picked(row + width, pick),
                                     picked(row + 2 * width, pick)};
            const __m256 upper = _mm256_blendv_ps(first3[0], first3[1], inLower);
            const __m256 lower = _mm256_blendv_ps(first3[1], first3[2], inLower);
            _mm_storeu_ps(to, _mm256_cvtpd_ps(between(upper, lower, fu, fv)));
        }
    }
}

bool windowsWork(const Image& src)
{
    constexpr int kNarrowest = 64; // so that rows are told apart by far
    return __builtin_cpu_supports("avx2") && src.width >= kNarrowest && src.height >= 3;
}

#endif

} // namespace

void sampleCells(const Image& src, const SampledCells& cells, Image& out, std::size_t to)
{
    const int whole = cells.size / kGroup * kGroup;
#ifdef ZR_AVX2_KERNEL
    const bool windows = windowsWork(src);
    if (windows)
        sampleWindows(src, cells, out.data.data() + to, src.pixelCount());
#else
    const bool windows = false;
#endif
    for (int c = 0; c < src.channels; ++c) {
        float* const target = out.plane(c) + to;
        if (!windows)
            sampleGroups(src.plane(c), src.width, cells, whole, target);
        sampleEach(src.plane(c), src.width, cells, whole, cells.size, target);
    }
}

} // namespace zre
