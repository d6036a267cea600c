#pragma once

#include <cstddef>
#include <vector>

#include "engine/stars/star.h"

namespace zre {

/// Keeps the `cap` brightest stars by peak, in their order; ties at the cut all stay. Nothing for a
/// cap below 1.
void capStarsByBrightness(std::vector<Star>& stars, int cap);

/// Replaces each star that has a fresh one within half a pixel: all but its depth comes from the
/// nearest fresh star. Fresh stars without such a neighbour are ignored, so that indices never
/// move. Gives the number replaced.
std::size_t spliceStarsByCentroid(std::vector<Star>& stars, const std::vector<Star>& fresh);

} // namespace zre
