#include "tests/engine/stars/naive_detect.h"

#include <algorithm>
#include <cmath>

#include "engine/image/blur.h"
#include "engine/stars/erasure_mask.h"
#include "engine/stars/profile_sprite.h"

namespace naive {

using zre::Image;
using zre::Star;

static double quantile(std::vector<int> bins, double share)
{
    std::sort(bins.begin(), bins.end());
    const std::size_t target = static_cast<std::size_t>(share * static_cast<double>(bins.size()));
    return ((target > 0 ? bins[target - 1] : 0) + 0.5) / 1024.0;
}

static float smooth(double value, double low, double high)
{
    const double t = (value - low) / std::max(high - low, 1e-6);
    return t < 0.0 ? 0.0f : t > 1.0 ? 1.0f : static_cast<float>((3.0 - 2.0 * t) * t * t);
}

void detectStars(const Image& image, std::vector<Star>& stars, Image& starless,
                 const zre::StarDetectParams& params, const std::vector<zre::StarErasure>& erasures)
{
    stars.clear();
    starless = image;
    const int w = image.width;
    const int h = image.height;
    if (w < 1 || h < 1 || image.channels < 1)
        return;
    Image background = image;
    zre::gaussianBlur(background, params.backgroundScale, 0.01f, {});
    const auto lightOf = [&](int c, std::size_t pixel) {
        const float light = image.plane(c)[pixel] - background.plane(c)[pixel];
        return std::isfinite(light) ? std::max(0.0f, light) : 0.0f;
    };
    std::vector<float> plane(image.pixelCount(), 0.0f);
    std::vector<int> bins(plane.size());
    for (std::size_t i = 0; i < plane.size(); ++i) {
        for (int c = 0; c < image.channels; ++c)
            plane[i] = std::max(plane[i], lightOf(c, i));
        bins[i] = static_cast<int>(std::min(plane[i] * 1024.0f, 1023.0f));
    }
    const double median = quantile(bins, 0.5);
    const double sigma = std::max(quantile(bins, 0.8413) - median, 1e-5);
    const double high = static_cast<double>(params.thresholdSigma) * sigma + median;
    const double low = 0.4 * static_cast<double>(params.thresholdSigma) * sigma + median;

    const auto at = [&](int x, int y) {
        return static_cast<std::size_t>(y) * std::size_t(w) + std::size_t(x);
    };
    std::vector<bool> marked(plane.size(), false);
    zre::ErasureMask mask(erasures);
    for (int y = 1; y < h - 1; ++y)
        for (int x = 1; x < w - 1; ++x) {
            bool seed = !marked[at(x, y)] && static_cast<double>(plane[at(x, y)]) >= high;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    seed = seed && !(plane[at(x + dx, y + dy)] > plane[at(x, y)]);
            if (!seed)
                continue;
            std::vector<std::pair<int, int>> stack{{x, y}};
            std::vector<std::size_t> region;
            marked[at(x, y)] = true;
            int minX = x, maxX = x, minY = y, maxY = y;
            double sum = 0.0, sumX = 0.0, sumY = 0.0;
            float peak = 0.0f;
            bool large = false;
            while (!stack.empty() && !large) {
                const auto [px, py] = stack.back();
                stack.pop_back();
                const float v = plane[at(px, py)];
                region.push_back(at(px, py));
                minX = std::min(minX, px);
                maxX = std::max(maxX, px);
                minY = std::min(minY, py);
                maxY = std::max(maxY, py);
                sum += static_cast<double>(v);
                sumX += px * static_cast<double>(v);
                sumY += py * static_cast<double>(v);
                peak = std::max(peak, v);
                large = maxX - minX > 2 * params.maxRadius || maxY - minY > 2 * params.maxRadius;
                const int next[4][2] = {{px + 1, py}, {px - 1, py}, {px, py + 1}, {px, py - 1}};
                for (const auto& [nx, ny] : next)
                    if (!large && nx >= 0 && ny >= 0 && nx < w && ny < h && !marked[at(nx, ny)] &&
                        static_cast<double>(plane[at(nx, ny)]) > low) {
                        marked[at(nx, ny)] = true;
                        stack.emplace_back(nx, ny);
                    }
            }
            if (large || peak < params.minPeak || !(sum > 0.0))
                continue;
            Star star;
            star.x = sumX / sum;
            star.y = sumY / sum;
            star.peak = peak;
            mask.select(minX, minY, maxX - minX + 1, maxY - minY + 1);
            for (const std::size_t pixel : region) {
                double remove = 0.0, keepBack = 0.0;
                mask.coverageAt(static_cast<int>(pixel) % w, static_cast<int>(pixel) / w, remove,
                                keepBack, nullptr);
                const float alpha = smooth(static_cast<double>(plane[pixel]), low, high);
                for (int c = 0; c < std::min(image.channels, 4); ++c) {
                    float& value = starless.plane(c)[pixel];
                    value = std::max(0.0f, value - lightOf(c, pixel) *
                                                       static_cast<float>(1.0 - remove) * alpha);
                }
            }
            zre::profileSprite(
                star, region, minX, minY, maxX, maxY, w, h, image.channels, params,
                [&](std::size_t pixel, float* out) {
                    for (int c = 0; c < image.channels; ++c)
                        out[c] = lightOf(c, pixel);
                },
                [&](std::size_t pixel) { return bool(marked[pixel]); });
            if (!mask.empty())
                zre::applyErasureToSprite(star, mask);
            stars.push_back(star);
        }
    if (params.maxStars < 1 || stars.size() <= static_cast<std::size_t>(params.maxStars))
        return;
    std::vector<float> peaks;
    for (const Star& star : stars)
        peaks.push_back(star.peak);
    std::sort(peaks.rbegin(), peaks.rend());
    const float least = peaks[static_cast<std::size_t>(params.maxStars - 1)];
    std::erase_if(stars, [&](const Star& star) { return star.peak < least; });
}

} // namespace naive
