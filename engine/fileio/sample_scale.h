#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zre::fileio {

// The same factors in every reader: a picture has the same bits whichever container it came in.
inline constexpr float kUInt8Scale = 0.003921569f;
inline constexpr float kUInt16Scale = 1.5259022e-5f;
inline constexpr double kUInt32Scale = 2.3283064370807974e-10;

inline float unitSample(std::uint8_t v)
{
    return static_cast<float>(v) * kUInt8Scale;
}
inline float unitSample(std::uint16_t v)
{
    return static_cast<float>(v) * kUInt16Scale;
}
inline float unitSample(std::uint32_t v)
{
    return static_cast<float>(static_cast<double>(v) * kUInt32Scale);
}

/// Signed integers: astronomical ones hold counts, with zero as black and the largest value as
/// white; what calibration left below zero becomes black.
template <class Int>
requires(std::is_signed_v<Int>&& std::is_integral_v<Int>) float unitSample(Int v)
{
    constexpr double scale = 1.0 / static_cast<double>(std::numeric_limits<Int>::max());
    return v > 0 ? static_cast<float>(static_cast<double>(v) * scale) : 0.0f;
}

/// Floating samples are limited to 0 to 1; a NaN becomes 0.
template <class Float>
requires(std::is_floating_point_v<Float>) float unitSample(Float v)
{
    return v > Float(0) ? (v < Float(1) ? static_cast<float>(v) : 1.0f) : 0.0f;
}

/// IEEE 754 binary16 to binary32, exact.
inline float halfToFloat(std::uint16_t half)
{
    const int exponent = (half >> 10) & 0x1f;
    const int fraction = half & 0x3ff;
    const float sign = half & 0x8000 ? -1.0f : 1.0f;
    if (exponent == 0x1f)
        return fraction ? std::numeric_limits<float>::quiet_NaN()
                        : sign * std::numeric_limits<float>::infinity();
    return exponent == 0 ? sign * std::ldexp(static_cast<float>(fraction), -24)
                         : sign * std::ldexp(static_cast<float>(fraction + 0x400), exponent - 25);
}

/// 0 to 1 as an integer of `maximum` steps, rounded to nearest; NaN gives 0.
inline std::uint32_t quantised(float v, float maximum)
{
    const float limited = unitSample(v);
    return static_cast<std::uint32_t>(limited * maximum + 0.5f);
}

} // namespace zre::fileio
