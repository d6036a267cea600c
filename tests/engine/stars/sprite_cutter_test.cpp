#include "engine/stars/profile_sprite.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include <gtest/gtest.h>

using zre::Star;
using zre::StarDetectParams;

namespace {

/// The pixels of a disc in a frame of `width` by `height`.
std::vector<std::size_t> disc(int centreX, int centreY, double radius, int width, int height)
{
    std::vector<std::size_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (std::hypot(x - centreX, y - centreY) <= radius)
                pixels.push_back(static_cast<std::size_t>(y * width + x));
    return pixels;
}

struct Cut
{
    int width = 60;
    int height = 50;
    StarDetectParams params;
    std::set<std::size_t> neighbours; ///< pixels of other blobs

    /// Light of pixel p: p + 0.25 in channel 0, p + 0.5 in channel 1.
    Star of(const std::vector<std::size_t>& region) const
    {
        int minX = width, minY = height, maxX = 0, maxY = 0;
        std::set<std::size_t> taken = neighbours;
        for (const std::size_t pixel : region) {
            const int x = static_cast<int>(pixel) % width;
            const int y = static_cast<int>(pixel) / width;
            minX = std::min(minX, x);
            maxX = std::max(maxX, x);
            minY = std::min(minY, y);
            maxY = std::max(maxY, y);
            taken.insert(pixel);
        }
        Star star;
        zre::profileSprite(
            star, region, minX, minY, maxX, maxY, width, height, 2, params,
            [](std::size_t pixel, float* out) {
                out[0] = static_cast<float>(pixel) + 0.25f;
                out[1] = static_cast<float>(pixel) + 0.5f;
            },
            [&](std::size_t pixel) { return taken.count(pixel) > 0; });
        return star;
    }
};

/// The coverage worked out pixel by pixel, from the definition.
std::vector<float> slowAlpha(const Star& star, const std::set<std::size_t>& region, int width,
                             int margin, int reach)
{
    const int w = star.boxW;
    const int h = star.boxH;
    const auto in = [&](int x, int y) {
        return region.count(static_cast<std::size_t>((star.boxY + y) * width + star.boxX + x)) > 0;
    };
    std::vector<float> rim(star.alpha.size());
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int count = 0;
            for (int j = std::max(0, y - margin); j <= std::min(h - 1, y + margin); ++j)
                for (int i = std::max(0, x - margin); i <= std::min(w - 1, x + margin); ++i)
                    count += in(i, j);
            const int side = 2 * margin + 1;
            rim[static_cast<std::size_t>(y * w + x)] =
                in(x, y) ? 1.0f : static_cast<float>(count) / static_cast<float>(side * side);
        }
    std::vector<float> across = rim;
    for (int pass = 0; pass < 2 && reach > 0; ++pass) {
        const std::vector<float> from = across;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                float sum = 0.0f;
                int count = 0;
                for (int k = -reach; k <= reach; ++k) {
                    const int i = pass == 0 ? x + k : x;
                    const int j = pass == 0 ? y : y + k;
                    if (i < 0 || j < 0 || i >= w || j >= h)
                        continue;
                    sum += from[static_cast<std::size_t>(j * w + i)];
                    ++count;
                }
                across[static_cast<std::size_t>(y * w + x)] = sum / static_cast<float>(count);
            }
    }
    return across;
}

} // namespace

TEST(ProfileSprite, BoxAndCoverageFollowTheDefinition)
{
    struct Case
    {
        double radius;
        float glow;
        float softness;
        int maxFeather;
        int margin;
        int reach;
    };
    // The feather of a box of n pixels is (n + 3) / 5, the blur half of a margin above 3.
    for (const Case& c : {Case{0.0, 1.0f, 1.0f, 8, 1, 1}, Case{3.0, 1.0f, 1.0f, 8, 2, 1},
                          Case{9.0, 1.0f, 1.0f, 8, 4, 2}, Case{9.0, 1.0f, 1.0f, 2, 2, 1},
                          Case{9.0, 1.6f, 2.0f, 8, 6, 6}, Case{3.0, 1.0f, 0.0f, 8, 2, 0},
                          Case{3.0, 0.0f, 1.0f, 8, 0, 1}, Case{3.0, 1.0f, 1.0f, -5, 1, 1},
                          Case{3.0, 1e30f, 1e30f, 8, 128, 16}}) {
        Cut cut;
        cut.params.edgeGlow = c.glow;
        cut.params.edgeSoftness = c.softness;
        cut.params.maxFeather = c.maxFeather;
        const auto region = disc(30, 4, c.radius, cut.width, cut.height);
        const Star star = cut.of(region);
        const int radius = static_cast<int>(c.radius);
        EXPECT_EQ(star.boxX, std::max(0, 30 - radius - c.margin));
        EXPECT_EQ(star.boxY, std::max(0, 4 - radius - c.margin));
        EXPECT_EQ(star.boxX + star.boxW, std::min(cut.width, 31 + radius + c.margin));
        EXPECT_EQ(star.boxY + star.boxH, std::min(cut.height, 5 + radius + c.margin));
        EXPECT_EQ(star.alpha,
                  slowAlpha(star, {region.begin(), region.end()}, cut.width, c.margin, c.reach))
            << c.radius << ' ' << c.glow << ' ' << c.softness;
    }
}

TEST(ProfileSprite, LightComesFromTheRegionAndFreePixelsOnly)
{
    for (const bool soft : {true, false}) {
        Cut cut;
        cut.params.softEdges = soft;
        const auto region = disc(30, 20, 4.0, cut.width, cut.height);
        const auto other = disc(36, 20, 1.0, cut.width, cut.height);
        cut.neighbours = {other.begin(), other.end()};
        const Star star = cut.of(region);
        EXPECT_EQ(star.channels, 2);
        EXPECT_EQ(star.boxW, soft ? 13 : 9);
        const std::set<std::size_t> inside(region.begin(), region.end());
        for (int y = 0; y < star.boxH; ++y)
            for (int x = 0; x < star.boxW; ++x) {
                const std::size_t pixel =
                    static_cast<std::size_t>((star.boxY + y) * cut.width + star.boxX + x);
                const std::size_t at = static_cast<std::size_t>(y * star.boxW + x);
                const bool lit = inside.count(pixel) || (soft && !cut.neighbours.count(pixel));
                EXPECT_EQ(star.sprite[2 * at], lit ? static_cast<float>(pixel) + 0.25f : 0.0f);
                EXPECT_EQ(star.sprite[2 * at + 1], lit ? static_cast<float>(pixel) + 0.5f : 0.0f);
                if (!soft) {
                    EXPECT_EQ(star.alpha[at], inside.count(pixel) ? 1.0f : 0.0f);
                }
            }
    }
}

TEST(ProfileSprite, CoverageFadesOutAtTheBoxAndTakesNoLargeStep)
{
    for (const double radius : {6.0, 9.0, 14.0, 19.0}) {
        Cut cut;
        cut.width = cut.height = 80;
        const Star star = cut.of(disc(40, 40, radius, cut.width, cut.height));
        float ring = 0.0f;
        float step = 0.0f;
        for (int y = 0; y < star.boxH; ++y)
            for (int x = 0; x < star.boxW; ++x) {
                const float alpha = star.alpha[static_cast<std::size_t>(y * star.boxW + x)];
                if (x == 0 || y == 0 || x == star.boxW - 1 || y == star.boxH - 1)
                    ring = std::max(ring, alpha);
                if (x > 0)
                    step = std::max(
                        step,
                        std::abs(alpha -
                                 star.alpha[static_cast<std::size_t>(y * star.boxW + x - 1)]));
            }
        EXPECT_LT(ring, 0.12f) << radius;
        EXPECT_LT(step, 0.35f) << radius;
    }
}

TEST(ProfileSprite, HostileBoundsAndParametersGiveABoundSprite)
{
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    StarDetectParams params;
    params.edgeGlow = params.edgeSoftness = std::numeric_limits<float>::quiet_NaN();
    const auto sample = [](std::size_t, float* out) { *out = 1.0f; };
    const auto free = [](std::size_t) { return false; };
    Star star;
    zre::profileSprite(star, {0, 5, 1u << 30}, kLeast, kLeast, kMost, kMost, 9, 7, 1, params,
                       sample, free);
    EXPECT_EQ(star.boxW, 9);
    EXPECT_EQ(star.boxH, 7);
    EXPECT_EQ(star.alpha.size(), 63u);
    for (const auto& [w, h] : {std::pair(0, 0), std::pair(-3, 5), std::pair(1, 1)}) {
        zre::profileSprite(star, {0}, kMost, kMost, kLeast, kLeast, w, h, 1, params, sample, free);
        EXPECT_EQ(star.alpha.size(),
                  static_cast<std::size_t>(star.boxW) * static_cast<std::size_t>(star.boxH));
        EXPECT_LE(star.alpha.size(), 1u);
    }
}
