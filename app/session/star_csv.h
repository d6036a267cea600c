#pragma once

#include <optional>
#include <vector>

#include <QString>

#include "engine/astro/wcs.h"
#include "engine/stars/star.h"

/// A place on the sky, degrees.
struct SkyPlace
{
    double ra = 0.0; ///< 0 to 360
    double dec = 0.0;
};

/// Where a star at a place of the image stands on the sky; nothing without a solution. The place
/// goes through the solution as it is, as everywhere that stars meet the sky.
std::optional<SkyPlace> starSkyPlace(double x, double y, const zre::Wcs& wcs);

/// The stars as comma-separated values, a header line and one line a star, in the list's order.
///
/// Columns: index (from 0, the place in `stars`), x, y (pixels), peak, depth, width, height (of the
///          sprite's box, pixels), distance_pc, ra_deg, dec_deg. What is not known stays empty: a
///          distance that is 0, a sky place without a solution.
/// Numbers have a decimal point under any locale.
QString starsCsv(const std::vector<zre::Star>& stars, const zre::Wcs& wcs);
/// Writes `starsCsv` to a file, whole or not at all. Errors: false, with `error` (may be null)
/// naming the file.
bool saveStarsCsv(const QString& path, const std::vector<zre::Star>& stars, const zre::Wcs& wcs,
                  QString* error);
