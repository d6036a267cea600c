#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "engine/image/image.h"

/// The slow obvious forms, one sample at a time in the stated order: what the fast ones are held
/// against, bit for bit in the tests and in time in the benchmarks.
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

inline zre::Image product(const zre::Image& a, const zre::Image& b)
{
    zre::Image out = a;
    std::transform(a.data.begin(), a.data.end(), b.data.begin(), out.data.begin(),
                   std::multiplies<float>());
    return out;
}

/// The filter as it is defined, one plane for each quantity.
inline zre::Image guided(const zre::Image& guide, const zre::Image& target, float sigma, float eps)
{
    const auto mean = [&](const zre::Image& img) {
        return sigma > 0.0f ? blurred(img, sigma, 0.01f) : img;
    };
    const zre::Image meanI = mean(guide);
    const zre::Image meanP = mean(target);
    const zre::Image meanII = mean(product(guide, guide));
    const zre::Image meanIP = mean(product(guide, target));
    zre::Image a = target;
    zre::Image b = target;
    for (std::size_t i = 0; i < a.data.size(); ++i) {
        const double mI = meanI.data[i];
        const double mP = meanP.data[i];
        const double var = meanII.data[i] - mI * mI + static_cast<double>(eps);
        const double slope = (meanIP.data[i] - mI * mP) / var;
        a.data[i] = static_cast<float>(slope);
        b.data[i] = static_cast<float>(mP - slope * mI);
    }
    const zre::Image meanA = mean(a);
    const zre::Image meanB = mean(b);
    zre::Image out = target;
    for (std::size_t i = 0; i < out.data.size(); ++i)
        out.data[i] = static_cast<float>(static_cast<double>(meanA.data[i]) *
                                             static_cast<double>(guide.data[i]) +
                                         static_cast<double>(meanB.data[i]));
    return out;
}

inline double linearised(float v)
{
    return static_cast<double>(v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f));
}

/// The definition, with the C library's functions.
inline double lightness(double y)
{
    const double f =
        y > 0.008856451679035631 ? std::cbrt(y) : (903.2962962962963 * y + 16.0) / 116.0;
    const double l = 116.0 * f - 16.0;
    return l < 0.0 ? 0.0 : l > 100.0 ? 1.0 : l / 100.0;
}

inline double luminance(float r, float g, float b)
{
    return 0.2126 * linearised(r) + 0.7152 * linearised(g) + 0.0722 * linearised(b);
}

inline zre::Image resampled(const zre::Image& src, int width, int height)
{
    zre::Image out(width, height, src.channels > 2 ? 1 : 0);
    std::size_t index = 0;
    for (int c = 0; c < out.channels; ++c)
        for (std::int64_t j = 0; j < height; ++j)
            for (std::int64_t i = 0; i < width; ++i) {
                const std::int64_t y0 = j * src.height / height;
                const std::int64_t y1 = std::min<std::int64_t>(
                    src.height, std::max(y0 + 1, (j + 1) * src.height / height));
                const std::int64_t x0 = i * src.width / width;
                const std::int64_t x1 = std::min<std::int64_t>(
                    src.width, std::max(x0 + 1, (i + 1) * src.width / width));
                float sum = 0.0f;
                for (std::int64_t y = y0; y < y1; ++y)
                    for (std::int64_t x = x0; x < x1; ++x)
                        sum += src.plane(c)[y * src.width + x];
                out.data[index++] = sum / static_cast<float>((y1 - y0) * (x1 - x0));
            }
    return out;
}

inline std::size_t bin(float v)
{
    if (std::isnan(v))
        return 0;
    return static_cast<std::size_t>(
        std::clamp(std::floor(static_cast<double>(v) * 1024.0), 0.0, 1023.0));
}

} // namespace naive
