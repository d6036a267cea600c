#pragma once

#include <cstddef>
#include <vector>

namespace zre {

/// Parts a blob into its peaks: two stay apart when the saddle between them is below `ratio` of the
/// lower one and both are at least `floor` high (topological persistence).
///
/// `region` holds pixel indices (y * width + x) into `values`. Each part lists its pixels from the
/// brightest down; pixels of equal value stand in the order of their indices.
std::vector<std::vector<std::size_t>>
splitRegionByPersistence(const std::vector<std::size_t>& region, const float* values, int width,
                         double ratio, double floor);

} // namespace zre
