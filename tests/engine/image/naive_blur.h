#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/image/image.h"

/// The slow obvious blur that the fast one must equal bit for bit: one sample at a time, its taps
/// in order.
namespace naive {

inline std::vector<float> gaussianWeights(float sigma, float cutoff)
{
    const double s = static_cast<double>(sigma);
    const double reach = cutoff > 0.0f && cutoff < 1.0f
                             ? std::sqrt(-2.0 * std::log(static_cast<double>(cutoff)))
                             : std::sqrt(9.210340416679667);
    const int r = std::max(1, static_cast<int>(std::ceil(reach * s)));
    std::vector<double> exact;
    double sum = 0.0;
    for (int i = -r; i <= r; ++i) {
        exact.push_back(std::exp(-static_cast<double>(i) * i / (2.0 * s * s)));
        sum += exact.back();
    }
    std::vector<float> weights;
    for (const double w : exact)
        weights.push_back(static_cast<float>(w / sum));
    return weights;
}

inline zre::Image blurred(const zre::Image& img, float sigma, float cutoff)
{
    const std::vector<float> weights = gaussianWeights(sigma, cutoff);
    const int r = static_cast<int>(weights.size() / 2);
    const auto at = [&](const zre::Image& from, int c, int x, int y) {
        const int cx = std::clamp(x, 0, from.width - 1);
        const int cy = std::clamp(y, 0, from.height - 1);
        return from.plane(c)[static_cast<std::size_t>(cy) * static_cast<std::size_t>(from.width) +
                             static_cast<std::size_t>(cx)];
    };
    const auto pass = [&](const zre::Image& from, int stepX, int stepY) {
        zre::Image to = from;
        std::size_t index = 0;
        for (int c = 0; c < from.channels; ++c)
            for (int y = 0; y < from.height; ++y)
                for (int x = 0; x < from.width; ++x) {
                    float sum = 0.0f;
                    for (int i = -r; i <= r; ++i)
                        sum += weights[static_cast<std::size_t>(i + r)] *
                               at(from, c, x + i * stepX, y + i * stepY);
                    to.data[index++] = sum;
                }
        return to;
    };
    return pass(pass(img, 1, 0), 0, 1);
}

} // namespace naive
