#include "engine/stars/heal_starless.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zre {

namespace {

/// Coverage below this share of a star's own is rim, across which the base returns to the picture.
constexpr float kRimShare = 0.5f;
constexpr float kNoCoverage = 1e-4f;

/// A picture of which each pixel counts with a weight of 0 to 1.
struct Level
{
    Image colour;
    std::vector<float> weight;
};

/// Means of two by two pixels, by their weights.
Level halved(const Level& fine)
{
    const int width = fine.colour.width;
    const int height = fine.colour.height;
    Level coarse{Image((width + 1) / 2, (height + 1) / 2, fine.colour.colorModel), {}};
    coarse.weight.assign(coarse.colour.pixelCount(), 0.0f);
    for (int y = 0; y < height; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        const std::size_t to =
            static_cast<std::size_t>(y / 2) * static_cast<std::size_t>(coarse.colour.width);
        const float* weight = fine.weight.data() + row;
        for (int x = 0; x < width; ++x)
            coarse.weight[to + static_cast<std::size_t>(x / 2)] += weight[x];
        for (int c = 0; c < coarse.colour.channels; ++c) {
            const float* from = fine.colour.plane(c) + row;
            float* sum = coarse.colour.plane(c) + to;
            for (int x = 0; x < width; ++x)
                sum[x / 2] += weight[x] > 0.0f ? weight[x] * from[x] : 0.0f;
        }
    }
    for (std::size_t i = 0; i < coarse.weight.size(); ++i) {
        float& weight = coarse.weight[i];
        for (int c = 0; weight > 0.0f && c < coarse.colour.channels; ++c)
            coarse.colour.plane(c)[i] /= weight;
        weight = std::min(weight, 1.0f);
    }
    return coarse;
}

/// Where a fine sample lies between coarse ones: the nearer one, and the other.
struct Between
{
    std::size_t near;
    std::size_t far;

    Between(int fine, int coarseSize)
        : near(static_cast<std::size_t>(fine / 2))
        , far(static_cast<std::size_t>(
              std::clamp(fine % 2 ? fine / 2 + 1 : fine / 2 - 1, 0, coarseSize - 1)))
    {
    }
};

/// Brings what a level lacks of weight from the level above it, bilinear.
void fill(Level& fine, const Level& coarse)
{
    const int width = fine.colour.width;
    const std::size_t coarseWidth = static_cast<std::size_t>(coarse.colour.width);
    for (int y = 0; y < fine.colour.height; ++y) {
        const Between rows(y, coarse.colour.height);
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        for (int x = 0; x < width; ++x) {
            const std::size_t at = row + static_cast<std::size_t>(x);
            const float weight = fine.weight[at];
            if (weight >= 1.0f)
                continue;
            const Between columns(x, coarse.colour.width);
            for (int c = 0; c < fine.colour.channels; ++c) {
                const float* near = coarse.colour.plane(c) + rows.near * coarseWidth;
                const float* far = coarse.colour.plane(c) + rows.far * coarseWidth;
                const float above =
                    0.75f * (0.75f * near[columns.near] + 0.25f * near[columns.far]) +
                    0.25f * (0.75f * far[columns.near] + 0.25f * far[columns.far]);
                float& value = fine.colour.plane(c)[at];
                value = weight > 0.0f ? weight * value + (1.0f - weight) * above : above;
            }
        }
    }
}

void fillHoles(Level& level)
{
    const bool whole =
        std::all_of(level.weight.begin(), level.weight.end(), [](float w) { return w >= 1.0f; });
    if (whole || (level.colour.width <= 1 && level.colour.height <= 1))
        return;
    Level coarse = halved(level);
    fillHoles(coarse);
    fill(level, coarse);
}

/// Calls `visit(pixel, alpha, light)` for all that a star covers; `light` is its sprite's place.
template <typename Visit>
void forEachCovered(Star& star, const Image& picture, const Visit& visit)
{
    const float* alpha = star.alpha.data();
    float* light = star.sprite.data();
    const bool fits = star.channels == picture.channels && !star.alpha.empty() && star.boxX >= 0 &&
                      star.boxY >= 0 && star.boxX <= picture.width - star.boxW &&
                      star.boxY <= picture.height - star.boxH;
    if (!fits)
        return;
    for (int y = star.boxY; y < star.boxY + star.boxH; ++y)
        for (int x = star.boxX; x < star.boxX + star.boxW; ++x, ++alpha, light += star.channels)
            if (*alpha > kNoCoverage)
                visit(static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                          static_cast<std::size_t>(x),
                      *alpha, light);
}

/// Turns the fill into the base where sprites cover it; elsewhere only a filled pixel that is no
/// number goes back to what it was.
void takeLight(const float* picture, const std::vector<float>& covered,
               const std::vector<float>& taken, float* base)
{
    for (std::size_t i = 0; i < covered.size(); ++i) {
        const float light = picture[i] - base[i];
        if (covered[i] > 0.0f)
            base[i] = picture[i] - (std::isfinite(light) ? taken[i] * std::max(light, 0.0f) : 0.0f);
        else if (!std::isfinite(picture[i]))
            base[i] = picture[i];
    }
}

} // namespace

void healStarless(const Image& picture, std::vector<Star>& stars, Image& starless)
{
    if (!picture.usable() || !picture.sameSize(starless) || starless.channels != picture.channels)
        return;
    std::vector<float> covered(picture.pixelCount(), 0.0f); // by all sprites together
    std::vector<float> taken(picture.pixelCount(), 0.0f);   // share of the light above the fill
    for (Star& star : stars) {
        if (star.alpha.empty())
            continue;
        const float most = *std::max_element(star.alpha.begin(), star.alpha.end());
        forEachCovered(star, picture, [&](std::size_t pixel, float alpha, float*) {
            covered[pixel] += alpha;
            taken[pixel] = std::min(1.0f, taken[pixel] + alpha / (kRimShare * most));
        });
    }
    Level sky{std::move(starless), std::vector<float>(picture.pixelCount())};
    for (std::size_t i = 0; i < sky.weight.size(); ++i) {
        bool counts = covered[i] <= 0.0f;
        for (int c = 0; c < picture.channels; ++c)
            counts &= std::isfinite(picture.plane(c)[i]);
        sky.weight[i] = counts ? 1.0f : 0.0f;
    }
    fillHoles(sky);
    starless = std::move(sky.colour);
    for (int c = 0; c < picture.channels; ++c)
        takeLight(picture.plane(c), covered, taken, starless.plane(c));
    for (Star& star : stars)
        forEachCovered(star, picture, [&](std::size_t pixel, float, float* out) {
            for (int c = 0; c < picture.channels; ++c) {
                const float light = picture.plane(c)[pixel] - starless.plane(c)[pixel];
                out[c] = std::isfinite(light) ? light / covered[pixel] : 0.0f;
            }
        });
}

} // namespace zre
