#include "engine/astro/astrometric_metadata.h"

#include <algorithm>
#include <cmath>

#include "engine/astro/degrees.h"

namespace acl {

static bool isFinite(Point point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

AstrometricMetadata::AstrometricMetadata(
    std::shared_ptr<const Projection> skyProjection,
    std::shared_ptr<const LinearWorldTransformation> worldTransformation, int width, int height)
    : projection(std::move(skyProjection))
    , transformation(std::move(worldTransformation))
    , imageWidth(width)
    , imageHeight(height)
{
}

double AstrometricMetadata::resolution() const
{
    return transformation ? std::sqrt(std::fabs(transformation->determinant())) : 0.0;
}

bool AstrometricMetadata::imageToCelestial(double x, double y, double& ra, double& dec) const
{
    if (!isValid())
        return false;
    const Point plane = transformation->toPlane({x, y});
    Point sky;
    if (!isFinite(plane) || !projection->planeToCelestial(plane, sky) || !isFinite(sky))
        return false;
    ra = sky.x;
    dec = sky.y;
    return true;
}

bool AstrometricMetadata::celestialToImage(double ra, double dec, double& x, double& y) const
{
    Point plane;
    if (!isValid() || !projection->celestialToPlane({ra, dec}, plane))
        return false;
    const Point image = transformation->toImage(plane);
    if (!isFinite(image))
        return false;
    x = image.x;
    y = image.y;
    return true;
}

/// Great-circle distance in degrees by Vincenty's formula, good at every distance.
static double separation(Point from, Point to)
{
    const double longitude = to.x - from.x;
    const double y1 = cosDeg(to.y) * sinDeg(longitude);
    const double y2 =
        cosDeg(from.y) * sinDeg(to.y) - sinDeg(from.y) * cosDeg(to.y) * cosDeg(longitude);
    const double x =
        sinDeg(from.y) * sinDeg(to.y) + cosDeg(from.y) * cosDeg(to.y) * cosDeg(longitude);
    return atan2Deg(std::hypot(y1, y2), x);
}

double AstrometricMetadata::searchRadius() const
{
    if (!isValid())
        throw Error("AstrometricMetadata::SearchRadius(): No astrometric solution.");
    const auto skyOf = [this](double x, double y) {
        Point sky;
        if (!imageToCelestial(x, y, sky.x, sky.y))
            throw Error("AstrometricMetadata::SearchRadius(): Failed to perform coordinate "
                        "transformation.");
        return sky;
    };
    const Point centre = skyOf(imageWidth / 2.0, imageHeight / 2.0);
    double radius = 0.0;
    for (const double x : {0.0, static_cast<double>(imageWidth)})
        for (const double y : {0.0, static_cast<double>(imageHeight)})
            radius = std::max(radius, separation(centre, skyOf(x, y)));
    return radius;
}

bool makeWcs(AstrometricMetadata metadata, zre::Wcs& out)
{
    if (!metadata.isValid())
        return false;
    zre::Wcs wcs;
    wcs.valid = true;
    wcs.resolutionArcsec = 3600.0 * metadata.resolution();
    wcs.solution = std::make_shared<const AstrometricMetadata>(std::move(metadata));
    out = std::move(wcs);
    return true;
}

} // namespace acl
