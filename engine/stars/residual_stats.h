#pragma once

#include <vector>

namespace zre {

/// Median and spread of a residual plane from a histogram of 1024 bins over 0 to 1.
///
/// The spread is the 84.13 % quantile less the median, at least 1e-5: unlike a standard deviation
/// it does not see the stars. An empty plane gives 1 / 2048 and 1e-5.
void residualStats(const std::vector<float>& values, double& median, double& sigma);

} // namespace zre
