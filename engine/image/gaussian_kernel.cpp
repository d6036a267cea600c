#include "engine/image/gaussian_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zre {

static constexpr double kLargestSigma = 4096.0;

/// Distance, in sigmas, at which the Gaussian falls to `cutoff`.
static double reachInSigmas(float cutoff)
{
    if (cutoff > 0.0f && cutoff < 1.0f)
        return std::sqrt(-2.0 * std::log(static_cast<double>(cutoff)));
    return std::sqrt(9.210340416679667);
}

GaussianKernel gaussianKernel(float sigma, float cutoff)
{
    const double s = std::min(static_cast<double>(sigma), kLargestSigma);
    GaussianKernel kernel;
    kernel.halfWidth = std::max(1, static_cast<int>(std::ceil(reachInSigmas(cutoff) * s)));

    std::vector<double> weights;
    weights.reserve(2 * static_cast<std::size_t>(kernel.halfWidth) + 1);
    double sum = 0.0;
    for (int i = -kernel.halfWidth; i <= kernel.halfWidth; ++i) {
        const double distance = i;
        weights.push_back(std::exp(-distance * distance / (2.0 * s * s)));
        sum += weights.back();
    }
    kernel.weights.reserve(weights.size());
    for (const double weight : weights)
        kernel.weights.push_back(static_cast<float>(weight / sum));
    return kernel;
}

} // namespace zre
