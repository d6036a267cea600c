#include "engine/stars/residual_stats.h"

#include <algorithm>
#include <cstdint>

#include "engine/image/histogram.h"

namespace zre {

/// The share of a normal distribution below one standard deviation above its middle.
static constexpr double kOneSigmaShare = 0.8413;
static constexpr double kLeastSigma = 1e-5;

void residualStats(const std::vector<float>& values, double& median, double& sigma)
{
    const Histogram histogram = histogramOf(values.data(), values.size());
    const auto quantile = [&](double share) {
        const double target = share * static_cast<double>(values.size());
        const int bin = histogram.binReaching(static_cast<std::uint64_t>(target));
        return bin < 0 ? 1.0 : Histogram::centre(bin);
    };
    median = quantile(0.5);
    sigma = std::max(quantile(kOneSigmaShare) - median, kLeastSigma);
}

} // namespace zre
