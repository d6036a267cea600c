#pragma once

#include <memory>
#include <string>

namespace acl {
class AstrometricMetadata;
}

namespace zre {

/// The astrometric solution of one image. Copies share the immutable solution, so any thread may
/// map through it.
///
/// Pixels are continuous from the top-left corner, y down; sky positions are degrees, right
/// ascension 0 to 360. No method throws; each returns false, or 0, on failure and then leaves its
/// outputs alone.
struct Wcs
{
    bool valid = false;
    double resolutionArcsec = 0.0; ///< per pixel
    std::shared_ptr<const acl::AstrometricMetadata> solution;

    bool imageToCelestial(double x, double y, double& ra, double& dec) const;
    bool celestialToImage(double ra, double dec, double& x, double& y) const;
    /// The sky position of (width / 2, height / 2).
    bool centerCelestial(double& ra, double& dec) const;
    /// Great-circle degrees from the centre to the farthest corner; 0 without a solution.
    double searchRadiusDeg() const;
};

/// A gnomonic solution about the image's centre, without parity flip: X grows with x and Y with y,
/// turned by `rotationDeg`. False, with `out` as it was, when no solution comes of the values.
bool makeSyntheticWcs(double ra, double dec, double resolutionArcsec, double rotationDeg, int width,
                      int height, Wcs& out);

/// Builds a synthetic solution, maps its centre, a corner and a sky point, and tells each value,
/// ending in "PASS" or "FAIL: solution not valid".
std::string wcsBuildSpike();

} // namespace zre
