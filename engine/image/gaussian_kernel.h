#pragma once

#include <vector>

namespace zre {

/// The normalised weights of a Gaussian, for the taps -halfWidth to +halfWidth.
struct GaussianKernel
{
    int halfWidth = 0;
    std::vector<float> weights; ///< 2 * halfWidth + 1 of them
};

/// The kernel of `sigma` pixels (finite, above 0) that ends where the weight falls to `cutoff`.
///
/// halfWidth = max(1, ceil(sqrt(-2 ln cutoff) * sigma)); a `cutoff` outside (0, 1) counts as 0.01.
/// A sigma above 4096 counts as 4096: such a kernel is flat over any picture, and the time and the
/// memory of a senseless value stay bounded.
GaussianKernel gaussianKernel(float sigma, float cutoff);

} // namespace zre
