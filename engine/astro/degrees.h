#pragma once

#include <cmath>
#include <numbers>

namespace acl {

inline constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

/// Longitude brought into -180 (excluded) to 180.
inline double wrap180(double degrees)
{
    const double wrapped = std::remainder(degrees, 360.0);
    return wrapped == -180.0 ? 180.0 : wrapped;
}

/// Longitude brought into 0 to 360 (excluded).
inline double wrap360(double degrees)
{
    const double wrapped = std::fmod(degrees, 360.0);
    const double positive = wrapped < 0.0 ? wrapped + 360.0 : wrapped;
    return positive >= 360.0 ? 0.0 : positive;
}

/// Sine and cosine of degrees; exact at multiples of 90, so that a reference point maps to itself.
inline double sinDeg(double degrees)
{
    const double wrapped = wrap180(degrees);
    return wrapped == 180.0 ? 0.0 : std::sin(wrapped / kDegreesPerRadian);
}

inline double cosDeg(double degrees)
{
    const double wrapped = wrap180(degrees);
    return std::fabs(wrapped) == 90.0 ? 0.0 : std::cos(wrapped / kDegreesPerRadian);
}

inline double atan2Deg(double y, double x)
{
    return std::atan2(y, x) * kDegreesPerRadian;
}

} // namespace acl
