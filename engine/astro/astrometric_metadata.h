#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/astro/keyword.h"
#include "engine/astro/projection.h"
#include "engine/astro/wcs.h"
#include "engine/astro/world_transformation.h"

namespace acl {

/// What ties one image to the sky: a projection, a linear world transformation and the image's
/// size. Immutable after it is built. Failures are exceptions (`acl::Error`); `zre::Wcs` catches
/// them.
class AstrometricMetadata
{
public:
    /// Builds from properties, with keywords standing in for those absent. Without a complete
    /// solution the result has no projection or no transformation (`isValid()` false).
    ///
    /// Keywords count pixels from 1 at centres; `ROWORDER` tells which way the rows run ('TOP-DOWN'
    /// or 'BOTTOM-UP'), and without it the reading is taken under which the picture is not
    /// mirrored. Throws "Invalid WCS metadata: Undefined CRVAL1 field" (or CRVAL2) when a
    /// projection is named without one.
    static AstrometricMetadata Build(const std::vector<Property>& properties,
                                     const std::vector<FITSKeyword>& keywords, int width,
                                     int height);

    AstrometricMetadata(std::shared_ptr<const Projection> projection,
                        std::shared_ptr<const LinearWorldTransformation> transformation, int width,
                        int height);
    AstrometricMetadata() = default;

    bool isValid() const { return projection && transformation; }
    const Projection* projectionOf() const { return projection.get(); }
    const LinearWorldTransformation* transformationOf() const { return transformation.get(); }
    int width() const { return imageWidth; }
    int height() const { return imageHeight; }
    /// Degrees per pixel.
    double resolution() const;

    /// Image to sky in degrees, right ascension 0 to 360; false when the point does not map.
    bool imageToCelestial(double x, double y, double& ra, double& dec) const;
    bool celestialToImage(double ra, double dec, double& x, double& y) const;
    /// Throws when there is no solution or a corner does not map.
    double searchRadius() const;

    /// Replaces the solution's keywords in `keywords` by the exact inverse of what `Build` reads,
    /// with `ROWORDER` and numbers of 17 significant digits.
    void UpdateWCSKeywords(std::vector<FITSKeyword>& keywords) const;

private:
    std::shared_ptr<const Projection> projection;
    std::shared_ptr<const LinearWorldTransformation> transformation;
    int imageWidth = 0;
    int imageHeight = 0;
};

/// The solution in the shell's form; false, with `out` as it was, when `metadata` is not valid.
bool makeWcs(AstrometricMetadata metadata, zre::Wcs& out);

} // namespace acl
