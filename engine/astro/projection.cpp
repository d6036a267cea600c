#include "engine/astro/projection.h"

#include <cmath>
#include <limits>

#include "engine/astro/degrees.h"
#include "engine/astro/spherical_rotation.h"

namespace acl {

ProjectionReference::ProjectionReference(double rightAscension, double declination)
    : ra(rightAscension)
    , dec(declination)
    , nativeLongitude(std::numeric_limits<double>::quiet_NaN())
    , nativeLatitude(nativeLongitude)
    , lonPole(nativeLongitude)
    , latPole(nativeLongitude)
{
}

static ProjectionReference withDefaults(ProjectionReference reference, double theta0)
{
    const auto orDefault = [](double& value, double standard) {
        if (std::isnan(value))
            value = standard;
    };
    orDefault(reference.nativeLongitude, 0.0);
    orDefault(reference.nativeLatitude, theta0);
    const bool northward = reference.dec >= reference.nativeLatitude;
    orDefault(reference.lonPole, wrap180(reference.nativeLongitude + (northward ? 0.0 : 180.0)));
    orDefault(reference.latPole, 90.0);
    for (const double value : {reference.ra, reference.dec, reference.nativeLongitude,
                               reference.nativeLatitude, reference.lonPole, reference.latPole})
        if (!std::isfinite(value))
            throw Error("Invalid WCS metadata: Reference point is not finite");
    if (std::fabs(reference.dec) > 90.0 || std::fabs(reference.nativeLatitude) > 90.0)
        throw Error("Invalid WCS metadata: Reference latitude beyond the pole");
    return reference;
}

Projection::Projection(const ProjectionReference& reference, double theta0)
    : referencePoint(withDefaults(reference, theta0))
    , sphericalRotation(rotationFor(referencePoint))
{
}

bool Projection::celestialToPlane(Point celestial, Point& plane) const
{
    return project(sphericalRotation.celestialToNative(celestial), plane);
}

bool Projection::planeToCelestial(Point plane, Point& celestial) const
{
    Point native;
    if (!unproject(plane, native))
        return false;
    celestial = sphericalRotation.nativeToCelestial(native);
    return true;
}

} // namespace acl
