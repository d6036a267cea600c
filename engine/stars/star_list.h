#pragma once

#include <cstddef>
#include <vector>

#include "engine/stars/star.h"

namespace zre {

/// Keeps the `cap` brightest stars by peak, in their order; ties at the cut all stay. Nothing for a
/// cap below 1.
void capStarsByBrightness(std::vector<Star>& stars, int cap);

/// Gives each fresh star's shape to the star nearest to it, if that lies within half a pixel: all
/// but depth and distance is replaced. Fresh stars without such a neighbour are ignored, so that
/// indices never move. Gives the number of stars replaced.
std::size_t spliceStarsByCentroid(std::vector<Star>& stars, const std::vector<Star>& fresh);

} // namespace zre
