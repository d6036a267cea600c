#include "engine/astro/wcs.h"

#include <cmath>
#include <exception>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/degrees.h"

namespace zre {

/// The solution when there is a usable one, else null.
static const acl::AstrometricMetadata* solutionOf(const Wcs& wcs)
{
    return wcs.valid ? wcs.solution.get() : nullptr;
}

bool Wcs::imageToCelestial(double x, double y, double& ra, double& dec) const
{
    const acl::AstrometricMetadata* metadata = solutionOf(*this);
    return metadata && metadata->imageToCelestial(x, y, ra, dec);
}

bool Wcs::celestialToImage(double ra, double dec, double& x, double& y) const
{
    const acl::AstrometricMetadata* metadata = solutionOf(*this);
    return metadata && metadata->celestialToImage(ra, dec, x, y);
}

bool Wcs::centerCelestial(double& ra, double& dec) const
{
    const acl::AstrometricMetadata* metadata = solutionOf(*this);
    return metadata &&
           metadata->imageToCelestial(metadata->width() / 2.0, metadata->height() / 2.0, ra, dec);
}

double Wcs::searchRadiusDeg() const
{
    try {
        const acl::AstrometricMetadata* metadata = solutionOf(*this);
        return metadata ? metadata->searchRadius() : 0.0;
    } catch (const std::exception&) {
        return 0.0;
    }
}

bool makeSyntheticWcs(double ra, double dec, double resolutionArcsec, double rotationDeg, int width,
                      int height, Wcs& out)
{
    try {
        const double scale = resolutionArcsec / 3600.0;
        const double turn = rotationDeg * 0.017453292519943295;
        const double along = scale * std::cos(turn);
        const double across = scale * std::sin(turn);
        const acl::Point centre{width / 2.0, height / 2.0};
        return acl::makeWcs({acl::ProjectionFactory::CreateByIdentifier("Gnomonic", ra, dec),
                             std::make_shared<const acl::LinearWorldTransformation>(
                                 std::array{along, -across, across, along}, centre),
                             width, height},
                            out);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace zre
