#pragma once

#include <array>
#include <optional>

#include <QJsonObject>
#include <QString>

#include "engine/astro/wcs.h"

namespace zrrender {

struct SkyPoint
{
    double raDeg = 0.0; ///< 0 to 360
    double decDeg = 0.0;
};

/// Where a picture lies on the sky. Pixels count from the top-left corner of the first pixel.
struct SolutionReport
{
    SkyPoint centre;
    double scaleArcsec = 0.0; ///< per pixel
    double upDeg =
        0.0; ///< position angle of the picture's up, from north through east, -180 to 180
    bool mirrored = false; ///< true when north up would put east on the right
    /// Great-circle lengths through the centre; absent where an edge is not on the sky.
    std::optional<double> widthDeg;
    std::optional<double> heightDeg;
    /// Top left, top right, bottom right, bottom left.
    std::array<std::optional<SkyPoint>, 4> corners;
};

/// Nothing without a solution, or when the centre does not map.
std::optional<SolutionReport> describeSolution(const zre::Wcs& wcs, int width, int height);

QJsonObject toJson(const SolutionReport& report);
QString toText(const SolutionReport& report);

} // namespace zrrender
