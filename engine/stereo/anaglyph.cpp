#include <algorithm>
#include <array>
#include <cmath>

#include "engine/image/multiversion.h"
#include "engine/stereo/views.h"

namespace zre {

namespace {

constexpr std::size_t kTaps = 6;
constexpr std::size_t kStrip = 1024;

/// Weights of left red, green, blue, right red, green, blue in one colour of the anaglyph.
using ColourMix = std::array<double, kTaps>;

constexpr ColourMix kLeftLuma{0.299, 0.587, 0.114, 0, 0, 0};
constexpr ColourMix kRightLuma{0, 0, 0, 0.299, 0.587, 0.114};

/// Red, green and blue of each encoding; the last is the least-squares projection by Dubois for
/// red/cyan filters.
constexpr std::array<std::array<ColourMix, 3>, 4> kEncodings{{
    {{{1, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 1, 0}, {0, 0, 0, 0, 0, 1}}},
    {{kLeftLuma, {0, 0, 0, 0, 1, 0}, {0, 0, 0, 0, 0, 1}}},
    {{kLeftLuma, kRightLuma, kRightLuma}},
    {{{0.437, 0.449, 0.164, -0.011, -0.032, -0.007},
      {-0.062, -0.062, -0.024, 0.377, 0.761, 0.009},
      {-0.048, -0.05, -0.017, -0.026, -0.093, 1.234}}},
}};

ZR_MULTIVERSION void scaleTap(double* __restrict sum, const float* __restrict plane, double weight,
                              std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        sum[i] = weight * plane[i];
}

ZR_MULTIVERSION void addTap(double* __restrict sum, const float* __restrict plane, double weight,
                            std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        sum[i] += weight * plane[i];
}

ZR_MULTIVERSION void storeColour(float* __restrict out, const double* __restrict sum, double gain,
                                 std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double v = sum[i] * gain;
        out[i] = static_cast<float>(v > 0.0 ? (v < 1.0 ? v : 1.0) : 0.0);
    }
}

/// Planes without weight are not read, so that a wild sample of one eye stays out of the other's
/// colours.
void mixStrip(const std::array<const float*, kTaps>& planes, const ColourMix& mix, double gain,
              std::size_t from, std::size_t size, float* out)
{
    std::array<double, kStrip> sum;
    bool first = true;
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        if (mix[tap] == 0.0)
            continue;
        (first ? scaleTap : addTap)(sum.data(), planes[tap] + from, mix[tap], size);
        first = false;
    }
    storeColour(out + from, sum.data(), gain, size);
}

} // namespace

void makeAnaglyph(const Image& left, const Image& right, Image& out, int mode, double gainR,
                  double gainG, double gainB)
{
    if (!left.usable() || !right.usable() || !left.sameSize(right))
        return;
    std::array<const float*, kTaps> planes;
    for (int c = 0; c < 3; ++c) {
        planes[static_cast<std::size_t>(c)] = left.plane(left.channels < 3 ? 0 : c);
        planes[static_cast<std::size_t>(c) + 3] = right.plane(right.channels < 3 ? 0 : c);
    }
    const auto& encoding = kEncodings[mode >= 0 && mode < 4 ? static_cast<std::size_t>(mode) : 0];
    const std::array gains{gainR, gainG, gainB};
    if (!out.sameSize(left) || out.channels != 3)
        out = Image(left.width, left.height, 1);
    out.colorModel = 1;
    const std::size_t size = out.pixelCount();
    for (std::size_t from = 0; from < size; from += kStrip)
        for (std::size_t c = 0; c < 3; ++c)
            mixStrip(planes, encoding[c], std::isfinite(gains[c]) ? gains[c] : 1.0, from,
                     std::min(kStrip, size - from), out.plane(static_cast<int>(c)));
}

} // namespace zre
