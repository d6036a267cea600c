#include "engine/depth/cue_mix.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

#include "engine/image/multiversion.h"

namespace zre {

// Each cue sweeps over a strip of running sums: every sum keeps the order of the cues, and no loop
// asks which cues are on.
static constexpr std::size_t kStrip = 1024;

ZR_MULTIVERSION static void startWith(double* __restrict sums, const float* __restrict plane,
                                      std::size_t size, double weight)
{
    for (std::size_t i = 0; i < size; ++i)
        sums[i] = plane[i] * weight;
}

ZR_MULTIVERSION static void addStructure(double* __restrict sums, const float* __restrict plane,
                                         std::size_t size, double scale, double weight)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double scaled = plane[i] * scale;
        sums[i] += (scaled < 1.0 ? scaled : 1.0) * weight;
    }
}

ZR_MULTIVERSION static void addBalance(double* __restrict sums, const float* __restrict nearPlane,
                                       const float* __restrict farPlane, std::size_t size,
                                       double weight)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double nearValue = nearPlane[i];
        sums[i] += nearValue / (nearValue + farPlane[i] + 1e-6) * weight;
    }
}

ZR_MULTIVERSION static void addWeighted(double* __restrict sums, const float* __restrict plane,
                                        std::size_t size, double weight)
{
    for (std::size_t i = 0; i < size; ++i)
        sums[i] += plane[i] * weight;
}

ZR_MULTIVERSION static void finishMix(const double* __restrict sums, float* __restrict depth,
                                      std::size_t size, double norm, double offset, double sign)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double mean = offset + sign * (sums[i] * norm);
        const double finite = std::fabs(mean) <= FLT_MAX ? mean : 0.0;
        depth[i] = static_cast<float>(finite);
    }
}

void mixCues(const CueMix& mix, float* depth, std::size_t size)
{
    const double norm = 1.0 / mix.total();
    const double offset = mix.inverted ? 1.0 : 0.0;
    const double sign = mix.inverted ? -1.0 : 1.0;
    std::array<double, kStrip> strip;
    double* sums = strip.data();
    for (std::size_t i = 0; i < size; i += kStrip) {
        const std::size_t count = std::min(kStrip, size - i);
        startWith(sums, mix.luminance + i, count, mix.luminanceWeight);
        if (mix.structure)
            addStructure(sums, mix.structure + i, count, mix.structureScale, mix.structureWeight);
        if (mix.nearPlane)
            addBalance(sums, mix.nearPlane + i, mix.farPlane + i, count, mix.narrowbandWeight);
        if (mix.ai)
            addWeighted(sums, mix.ai + i, count, mix.aiWeight);
        finishMix(sums, depth + i, count, norm, offset, sign);
    }
}

} // namespace zre
