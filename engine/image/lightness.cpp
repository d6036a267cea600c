#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "engine/image/multiversion.h"
#include "engine/image/raster.h"
#include "engine/image/reshape.h"

namespace zre {

// The definition, with the C library's functions.

static float linearised(float v)
{
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
}

static double luminance(float red, float green, float blue)
{
    return 0.2126 * static_cast<double>(linearised(red)) +
           0.7152 * static_cast<double>(linearised(green)) +
           0.0722 * static_cast<double>(linearised(blue));
}

static float lightness(double y)
{
    const double f =
        y > 0.008856451679035631 ? std::cbrt(y) : (903.2962962962963 * y + 16.0) / 116.0;
    const double l = 116.0 * f - 16.0;
    if (l < 0.0)
        return 0.0f;
    return l > 100.0 ? 1.0f : static_cast<float>(l / 100.0);
}

// The same in plain single-precision arithmetic, which the compiler turns into vectors and which
// gives the same bits on every processor. Both roots start from a division of the exponent in
// integers, within 17 percent of the result, and a polynomial in what is missing makes up for it;
// no step is iterated. The start is cut to so few digits that its small powers are exact.

/// Above this every sample is as good: the lightness is 1 whatever the other channels are, as long
/// as none is below `kLowest`.
static constexpr float kHighest = 4.0f;

/// Samples below this can cancel bright ones, and then the error of the fast form shows. Noise
/// around black lies above it.
static constexpr float kLowest = -0.04f;

/// `yes` or `no` by a mask: of a plain choice the compiler makes a branch around the longer arm.
ZR_KERNEL_STEP float choose(bool condition, float yes, float no)
{
    const std::uint32_t mask = 0u - static_cast<std::uint32_t>(condition);
    return std::bit_cast<float>((std::bit_cast<std::uint32_t>(yes) & mask) |
                                (std::bit_cast<std::uint32_t>(no) & ~mask));
}

/// About x^(-1/n): `origin` less the bits of x over n, cut to the digits in `mask`.
ZR_KERNEL_STEP float rootStart(float x, float oneOverN, std::int32_t origin, std::int32_t mask)
{
    const float bits = static_cast<float>(std::bit_cast<std::int32_t>(x));
    return std::bit_cast<float>((origin - static_cast<std::int32_t>(bits * oneOverN)) & mask);
}

ZR_KERNEL_STEP float polynomial(float, float last)
{
    return last;
}

/// first + x * (next + x * (...)), the coefficients from the lowest power on.
template <class... Coefficients>
ZR_KERNEL_STEP float polynomial(float x, float first, Coefficients... others)
{
    return first + x * polynomial(x, others...);
}

/// The sRGB rule; a NaN stays one.
ZR_KERNEL_STEP float fastLinearised(float v)
{
    const float shifted = (v + 0.055f) / 1.055f;
    const float x = choose(shifted > kHighest, kHighest, shifted);
    // y is about x^(-1/5), so that x^2.4 = x^2 (x y^3) (1 - e)^(-3/5) with e = 1 - x y^5.
    const float y = rootStart(x, 0.2f, 0x4c2ba983, ~0xffff);
    const float y2 = y * y;
    const float y3 = y2 * y;
    const float twoFifths = x * y3;
    const float e = 1.0f - twoFifths * y2;
    const float missing = e * polynomial(e, 0.6f, 0.4800006951f, 0.416000767f, 0.3741994024f,
                                         0.3442438882f, 0.3358646983f, 0.3172167193f);
    const float start = x * x * twoFifths;
    const float power = start + start * missing;
    return choose(v <= 0.04045f, v * (1.0f / 12.92f), power);
}

/// CIE lightness of a luminance, 0 to 1; a NaN stays one.
ZR_KERNEL_STEP float fastLightness(float y)
{
    // z is about Y^(-1/3), so that Y^(1/3) = Y z^2 (1 - e)^(-2/3) with e = 1 - Y z^3.
    const float z = rootStart(y, 1.0f / 3.0f, 0x54a1fc02, ~0xfff);
    const float start = y * (z * z);
    const float e = 1.0f - start * z;
    const float missing = e * polynomial(e, 0.6666666807f, 0.5555555641f, 0.4938031875f,
                                         0.4526543924f, 0.4285569901f, 0.4045979433f);
    // 1.16 Y^(1/3) - 0.16, with all that is small summed before it meets the start.
    const float curve = start + (0.16f * (start - 1.0f) + 1.16f * (start * missing));
    const float l = choose(y > 0.008856451679f, curve, y * 9.032962963f);
    return choose(l < 0.0f, 0.0f, choose(l > 1.0f, 1.0f, l));
}

ZR_MULTIVERSION static void lightnessOfGrey(const float* __restrict grey, float* __restrict out,
                                            std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        out[i] = fastLightness(fastLinearised(grey[i]));
}

/// Whether any pixel has a sample below `kLowest` is the result; those pixels want the slow way.
ZR_MULTIVERSION static bool lightnessOfColour(const float* __restrict red,
                                              const float* __restrict green,
                                              const float* __restrict blue, float* __restrict out,
                                              std::size_t count)
{
    std::int32_t low = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const float r = red[i];
        const float g = green[i];
        const float b = blue[i];
        low |= static_cast<std::int32_t>(r < kLowest) | static_cast<std::int32_t>(g < kLowest) |
               static_cast<std::int32_t>(b < kLowest);
        out[i] = fastLightness(0.2126f * fastLinearised(r) + 0.7152f * fastLinearised(g) +
                               0.0722f * fastLinearised(b));
    }
    return low != 0;
}

static void lightnessOfColours(const float* red, const float* green, const float* blue, float* out,
                               std::size_t count)
{
    constexpr std::size_t kStrip = 2048;
    for (std::size_t first = 0; first < count; first += kStrip) {
        const std::size_t end = std::min(count, first + kStrip);
        if (!lightnessOfColour(red + first, green + first, blue + first, out + first, end - first))
            continue;
        for (std::size_t i = first; i < end; ++i)
            if (red[i] < kLowest || green[i] < kLowest || blue[i] < kLowest)
                out[i] = lightness(luminance(red[i], green[i], blue[i]));
    }
}

void getLightness(const Image& src, Image& dst)
{
    if (!src.usable())
        return;
    Image separate;
    Image out = reshaped(&src == &dst ? separate : dst, src.width, src.height, 0);
    const std::size_t count = src.pixelCount();
    if (src.channels < 3)
        lightnessOfGrey(src.plane(0), out.plane(0), count);
    else
        lightnessOfColours(src.plane(0), src.plane(1), src.plane(2), out.plane(0), count);
    dst = std::move(out);
}

} // namespace zre
