#include "engine/image/power.h"

#include <bit>
#include <cstdint>

#include "engine/image/multiversion.h"

namespace zre {

// x^p = 2^(p log2 x), with steps that all exist as vector instructions. The integers are unsigned:
// shifts of signed 64-bit lanes do not.

/// log2 of a positive normal number, 0 at 1 exactly. x = m 2^e with m in sqrt(1/2) to sqrt(2);
/// ln m is the series of the inverse hyperbolic tangent in s = (m - 1) / (m + 1), |s| < 0.172.
static inline double logarithm2(double x)
{
    constexpr std::uint64_t kRootHalf = 0x3FE6A09E667F3BCDu; // bits of sqrt(1/2)
    constexpr std::uint64_t kBias = 1023;
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(x);
    const std::uint64_t biased = (bits - kRootHalf + (kBias << 52)) >> 52;
    const double m = std::bit_cast<double>(bits - ((biased - kBias) << 52));
    const double e = std::bit_cast<double>(biased | 0x4330000000000000u) - (0x1p52 + 1023.0);
    const double s = (m - 1.0) / (m + 1.0);
    const double q = s * s;
    double series = 1.0 / 17.0;
    series = series * q + 1.0 / 15.0;
    series = series * q + 1.0 / 13.0;
    series = series * q + 1.0 / 11.0;
    series = series * q + 1.0 / 9.0;
    series = series * q + 1.0 / 7.0;
    series = series * q + 1.0 / 5.0;
    series = series * q + 1.0 / 3.0;
    series = series * q + 1.0;
    return e + s * series * 2.8853900817779268; // 2 / ln 2
}

/// 2^y for y up to 0, 1 at 0 exactly; what would be below 2^-1000 counts as 2^-1000.
static inline double exponential2(double y)
{
    constexpr double kRounder = 0x1.8p52; // its sum with y has the rounded y in its lowest bits
    const double bounded = y > -1000.0 ? y : -1000.0;
    const double shifted = bounded + kRounder;
    const std::uint64_t power = (std::bit_cast<std::uint64_t>(shifted) + 1023u) << 52;
    const double x = (bounded - (shifted - kRounder)) * 0.69314718055994531; // |x| < 0.347
    double series = 1.0 / 39916800.0;
    series = series * x + 1.0 / 3628800.0;
    series = series * x + 1.0 / 362880.0;
    series = series * x + 1.0 / 40320.0;
    series = series * x + 1.0 / 5040.0;
    series = series * x + 1.0 / 720.0;
    series = series * x + 1.0 / 120.0;
    series = series * x + 1.0 / 24.0;
    series = series * x + 1.0 / 6.0;
    series = series * x + 0.5;
    series = series * x + 1.0;
    series = series * x + 1.0;
    return series * std::bit_cast<double>(power);
}

static inline double powerOf(double x, double exponent, double powerOfZero)
{
    const double power = exponential2(exponent * logarithm2(x));
    return x > 0.0 ? power : powerOfZero;
}

ZR_MULTIVERSION void raiseToPower(float* samples, std::size_t size, double exponent)
{
    const double powerOfZero = exponent == 0.0 ? 1.0 : 0.0;
    for (std::size_t i = 0; i < size; ++i)
        samples[i] = static_cast<float>(powerOf(samples[i], exponent, powerOfZero));
}

ZR_MULTIVERSION void raiseToPower(double* samples, std::size_t size, double exponent)
{
    const double powerOfZero = exponent == 0.0 ? 1.0 : 0.0;
    for (std::size_t i = 0; i < size; ++i)
        samples[i] = powerOf(samples[i], exponent, powerOfZero);
}

} // namespace zre
