#include "engine/astro/spherical_rotation.h"

#include <algorithm>
#include <cmath>

#include "engine/astro/degrees.h"

namespace acl {

/// Latitudes in degrees closer than this to a pole count as the pole.
static constexpr double kPoleTolerance = 1e-10;

/// The rotation is its own inverse with the two pole longitudes exchanged. The latitude comes from
/// atan2 and not from the textbook's asin, which loses half the digits next to the poles.
static Point rotate(Point from, double fromPoleLongitude, double poleLatitude,
                    double toPoleLongitude)
{
    const double longitude = from.x - fromPoleLongitude;
    const double sinLat = sinDeg(from.y);
    const double cosLat = cosDeg(from.y);
    const double sinPole = sinDeg(poleLatitude);
    const double cosPole = cosDeg(poleLatitude);
    const double cosLongitude = cosDeg(longitude);
    const double x = sinLat * cosPole - cosLat * sinPole * cosLongitude;
    const double y = -cosLat * sinDeg(longitude);
    const double z = sinLat * sinPole + cosLat * cosPole * cosLongitude;
    return {toPoleLongitude + atan2Deg(y, x), atan2Deg(z, std::hypot(x, y))};
}

Point SphericalRotation::nativeToCelestial(Point native) const
{
    const Point sky = rotate(native, nativePoleLongitude, poleDec, poleRa);
    return {wrap360(sky.x), sky.y};
}

Point SphericalRotation::celestialToNative(Point celestial) const
{
    const Point native = rotate(celestial, poleRa, poleDec, nativePoleLongitude);
    return {wrap180(native.x), native.y};
}

/// Of the pole's two possible declinations the valid one, or of two valid ones that nearer LATPOLE.
static double choosePoleDec(double first, double second, double latPole)
{
    const auto usable = [](double& dec) {
        dec = wrap180(dec);
        const bool fits = std::fabs(dec) <= 90.0 + kPoleTolerance;
        dec = std::clamp(dec, -90.0, 90.0);
        return fits;
    };
    const bool firstUsable = usable(first);
    const bool secondUsable = usable(second);
    if (!firstUsable && !secondUsable)
        throw Error("Invalid WCS metadata: No valid position of the celestial pole");
    if (!firstUsable || !secondUsable)
        return firstUsable ? first : second;
    const double firstOff = std::fabs(latPole - first);
    const double secondOff = std::fabs(latPole - second);
    if (std::fabs(firstOff - secondOff) < kPoleTolerance)
        return std::max(first, second);
    return firstOff < secondOff ? first : second;
}

static double poleDeclination(const ProjectionReference& reference)
{
    const double longitude = reference.lonPole - reference.nativeLongitude;
    const double sinTheta0 = sinDeg(reference.nativeLatitude);
    const double cosTheta0 = cosDeg(reference.nativeLatitude);
    const double across = cosTheta0 * sinDeg(longitude);
    const double span = std::sqrt(std::max(0.0, 1.0 - across * across));
    const double sinDec0 = sinDeg(reference.dec);
    if (span < 1e-12) {
        if (std::fabs(sinDec0) > 1e-12)
            throw Error("Invalid WCS metadata: No valid position of the celestial pole");
        return std::clamp(reference.latPole, -90.0, 90.0);
    }
    const double cosine = sinDec0 / span;
    if (std::fabs(cosine) > 1.0 + 1e-12)
        throw Error("Invalid WCS metadata: No valid position of the celestial pole");
    const double middle = atan2Deg(sinTheta0, cosTheta0 * cosDeg(longitude));
    const double half = std::acos(std::clamp(cosine, -1.0, 1.0)) * kDegreesPerRadian;
    return choosePoleDec(middle + half, middle - half, reference.latPole);
}

static double poleRightAscension(const ProjectionReference& reference, double poleDec)
{
    const double longitude = reference.lonPole - reference.nativeLongitude;
    if (90.0 - std::fabs(reference.dec) < kPoleTolerance)
        return reference.ra;
    if (90.0 - poleDec < kPoleTolerance)
        return reference.ra + longitude - 180.0;
    if (poleDec + 90.0 < kPoleTolerance)
        return reference.ra - longitude;
    const double cosDec0 = cosDeg(reference.dec);
    const double y = sinDeg(longitude) * cosDeg(reference.nativeLatitude) / cosDec0;
    const double x = (sinDeg(reference.nativeLatitude) - sinDeg(poleDec) * sinDeg(reference.dec)) /
                     (cosDeg(poleDec) * cosDec0);
    return reference.ra - atan2Deg(y, x);
}

SphericalRotation rotationFor(const ProjectionReference& reference)
{
    if (reference.nativeLatitude == 90.0)
        return {reference.ra, reference.dec, reference.lonPole};
    const double poleDec = poleDeclination(reference);
    return {poleRightAscension(reference, poleDec), poleDec, reference.lonPole};
}

} // namespace acl
