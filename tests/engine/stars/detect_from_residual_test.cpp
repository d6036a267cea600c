#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "engine/stars/detect_stars.h"
#include "engine/stars/region_split.h"
#include "engine/stars/star_list.h"
#include "engine/stars/star_sprites.h"
#include "tests/support/testkit.h"

namespace {

using zre::Image;
using zre::Star;
using zre::StarDetectParams;
using zre::StarErasure;

/// A stars layer that is painted star by star.
struct Field
{
    Image layer;

    Field(int width, int height)
        : layer(width, height, 1)
    {
    }

    Field& add(double x, double y, double peak, double sigmaX, double sigmaY = 0.0)
    {
        if (sigmaY == 0.0)
            sigmaY = sigmaX;
        for (int py = 0; py < layer.height; ++py)
            for (int px = 0; px < layer.width; ++px) {
                const double light = peak * std::exp(-0.5 * (std::pow((px - x) / sigmaX, 2) +
                                                             std::pow((py - y) / sigmaY, 2)));
                for (int c = 0; c < 3; ++c)
                    layer.plane(c)[py * layer.width + px] +=
                        static_cast<float>(light > 2e-3 ? light * (1.0 - 0.2 * c) : 0.0);
            }
        return *this;
    }

    std::vector<Star> find(const StarDetectParams& params,
                           const std::vector<StarErasure>& erasures = {}, Image* keepBack = nullptr,
                           const Image* starless = nullptr) const
    {
        std::vector<Star> stars;
        zre::detectStarsFromResidual(layer, stars, params, starless, &erasures, keepBack, nullptr);
        return stars;
    }
};

/// The stars drawn on black, as they stand.
Image drawn(const std::vector<Star>& stars, const Image& like)
{
    Image out(like.width, like.height, 1);
    zre::drawStarSprites(stars, out, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, -1.0, -1.0, nullptr, 0.0f);
    return out;
}

double lightWithin(const Image& image, double x, double y, double radius)
{
    double sum = 0.0;
    for (int i = 0; i < image.width * image.height; ++i)
        if (std::hypot(i % image.width - x, i / image.width - y) <= radius)
            sum += static_cast<double>(image.plane(0)[i]);
    return sum;
}

StarDetectParams options(float split = 0.0f, float wipe = 0.0f)
{
    StarDetectParams params;
    params.splitRatio = split;
    params.companionWipe = wipe;
    return params;
}

TEST(LayerDetection, ChainsPartAtDeepSaddlesOnly)
{
    Field chain(500, 400);
    for (int i = 0; i < 5; ++i)
        chain.add(20.0 + 18.0 * i, 20.0, 0.8 - 0.05 * i, 4.5); // saddles near a quarter
    EXPECT_EQ(chain.find(options(0.0f)).size(), 1u);
    const std::vector<Star> parts = chain.find(options(0.6f));
    ASSERT_EQ(parts.size(), 5u);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(std::any_of(parts.begin(), parts.end(), [&](const Star& star) {
            return std::hypot(star.x - (20.0 + 18.0 * i), star.y - 20.0) < 1.5;
        })) << i;
    Field buried(500, 400);
    buried.add(40, 40, 0.9, 3.0).add(40, 40, 0.3, 12.0).add(52, 40, 0.05, 1.5);
    EXPECT_EQ(buried.find(options(0.6f)).size(), 1u);
    Field knot(900, 900);
    knot.add(100, 100, 0.7, 30.0);
    EXPECT_EQ(knot.find(options(0.6f)).size(), 1u); // of any size
}

TEST(LayerDetection, CompanionsGoFromFaintToBrightAndNothingElseGoes)
{
    Field field(700, 600);
    field.add(70, 80, 0.6, 3.0).add(70, 80, 0.35, 22.0, 16.0); // a star in a lopsided glow
    const double companions[][3] = {{88, 80, 0.12}, {70, 100, 0.2}, {50, 78, 0.3}};
    for (const auto& c : companions)
        field.add(c[0], c[1], c[2], 1.5);
    field.add(270, 30, 0.15, 1.5); // alone
    const double alone = lightWithin(field.layer, 270, 30, 5.0);
    std::vector<double> last(3, std::numeric_limits<double>::infinity());
    int wiped = 0;
    for (const float dial : {0.0f, 0.3f, 0.45f, 0.6f, 1.0f}) {
        const Image shown = drawn(field.find(options(0.0f, dial)), field.layer);
        EXPECT_NEAR(lightWithin(shown, 70, 80, 4.0) / lightWithin(field.layer, 70, 80, 4.0), 1.0,
                    0.02);
        EXPECT_NEAR(lightWithin(shown, 270, 30, 5.0) / alone, 1.0, 0.03) << dial;
        wiped = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double light = lightWithin(shown, companions[i][0], companions[i][1], 3.0);
            EXPECT_LE(light, last[i] + 1e-4) << "a companion came back at " << dial;
            wiped +=
                light < 0.9 * lightWithin(field.layer, companions[i][0], companions[i][1], 3.0);
            last[i] = light;
        }
    }
    EXPECT_EQ(wiped, 3);
    // What is left is the glow that would have been there, though it is not round.
    Field glow(700, 600);
    glow.add(70, 80, 0.6, 3.0).add(70, 80, 0.35, 22.0, 16.0);
    for (const auto& c : companions)
        EXPECT_NEAR(
            lightWithin(drawn(field.find(options(0.0f, 1.0f)), field.layer), c[0], c[1], 3.0) /
                lightWithin(glow.layer, c[0], c[1], 3.0),
            1.0, 0.2);
}

TEST(LayerDetection, OfTwoComparableStarsNeitherIsWiped)
{
    Field pair(500, 400);
    pair.add(45, 30, 0.8, 5.0).add(70, 30, 0.7, 5.0);
    const Image shown = drawn(pair.find(options(0.0f, 1.0f)), pair.layer);
    for (const double x : {45.0, 70.0})
        EXPECT_NEAR(lightWithin(shown, x, 30, 6.0) / lightWithin(pair.layer, x, 30, 6.0), 1.0,
                    1e-3);
}

TEST(LayerDetection, AWipedPlaceShowsTheTextureOfTheStarlessPicture)
{
    Field field(600, 500);
    field.add(60, 60, 0.9, 3.0).add(60, 60, 0.4, 18.0).add(78, 60, 0.15, 1.5);
    Image starless = zrtest::noise(600, 500, 1, 5);
    Image keepBack;
    field.find(options(0.0f, 1.0f), {}, &keepBack, &starless);
    ASSERT_TRUE(keepBack.sameSize(field.layer));
    EXPECT_GT(lightWithin(keepBack, 78, 60, 4.0), 0.5);
    EXPECT_EQ(lightWithin(keepBack, 20, 20, 10.0), 0.0);
    const Image flat(90, 90, 1); // another size is of no use
    field.find(options(0.0f, 1.0f), {}, &keepBack, &flat);
    EXPECT_EQ(lightWithin(keepBack, 60, 60, 200.0), 0.0);
}

TEST(LayerDetection, ErasuresRemoveMoveBlendAndComeBack)
{
    Field field(600, 500);
    field.add(30, 50, 0.6, 2.0)
        .add(100, 50, 0.6, 3.0)
        .add(100, 50, 0.35, 14.0)
        .add(118, 50, 0.2, 1.5);
    const std::vector<Star> plain = field.find(options());
    ASSERT_EQ(plain.size(), 2u);

    const std::vector<Star> removed = field.find(options(), {{30, 50, 20, 2, 0}});
    ASSERT_EQ(removed.size(), 2u);
    const std::size_t gone = removed[0].x < 60 ? 0 : 1;
    EXPECT_TRUE(removed[gone].erased);
    EXPECT_EQ(removed[gone].depth, -1.0f);
    EXPECT_TRUE(removed[gone].sprite.empty());
    EXPECT_EQ(removed[1 - gone].sprite, plain[1 - gone].sprite);
    EXPECT_EQ(removed[1 - gone].alpha, plain[1 - gone].alpha);

    Image keepBack;
    field.find(options(), {{30, 50, 20, 2, 1}}, &keepBack);
    // A background of more channels than the layer keeps them, each with the layer's last.
    Field grey(field.layer.width, field.layer.height);
    grey.layer = Image(field.layer.width, field.layer.height, 0);
    std::copy_n(field.layer.plane(0), field.layer.pixelCount(), grey.layer.plane(0));
    Image coloured(field.layer.width, field.layer.height, 1);
    grey.find(options(), {{30, 50, 20, 2, 1}}, &coloured);
    ASSERT_EQ(coloured.channels, 3);
    for (int c = 0; c < coloured.channels; ++c)
        EXPECT_TRUE(std::equal(coloured.plane(c), coloured.plane(c) + coloured.pixelCount(),
                               keepBack.plane(0)));
    EXPECT_NEAR(lightWithin(keepBack, 30, 50, 12) / lightWithin(field.layer, 30, 50, 12), 1.0,
                0.02);

    Field without(600, 500);
    without.add(30, 50, 0.6, 2.0).add(100, 50, 0.6, 3.0).add(100, 50, 0.35, 14.0);
    const Image blended = drawn(field.find(options(), {{118, 50, 5, 2, 2}}), field.layer);
    EXPECT_NEAR(lightWithin(blended, 118, 50, 4) / lightWithin(without.layer, 118, 50, 4), 1.0,
                0.1);
    EXPECT_NEAR(lightWithin(blended, 100, 50, 4) / lightWithin(field.layer, 100, 50, 4), 1.0, 0.02);
}

bool same(const Star& a, const Star& b)
{
    return a.x == b.x && a.y == b.y && a.peak == b.peak && a.boxX == b.boxX && a.boxY == b.boxY &&
           a.boxW == b.boxW && a.boxH == b.boxH && a.erased == b.erased && a.sprite == b.sprite &&
           a.alpha == b.alpha;
}

/// Every star of a field whose blobs meet nothing but what they should, found by a mask over one
/// erasure, equals that of a search of the whole.
TEST(LayerDetection, ASearchWithinAMaskFindsTheSameStars)
{
    std::mt19937 random(7);
    const auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int round = 0; round < 25; ++round) {
        Field field(90, 70);
        for (int i = 0; i < 25; ++i)
            field.add(uniform(0, 90), uniform(0, 70), uniform(0.05, 0.9), uniform(0.7, 3.0));
        if (round % 5 == 0) {
            field.layer.data[uniform(0, 90 * 70)] = std::nanf("");
            field.layer.data[uniform(0, 90 * 70)] = std::numeric_limits<float>::infinity();
        }
        const Image noise = zrtest::noise(90, 70, 1, 3);
        StarDetectParams params = options(round % 2 ? 0.6f : 0.0f, round % 3 ? 0.5f : 0.0f);
        params.minPeak = round % 4 ? 0.1f : 0.0f;
        std::vector<StarErasure> erasures;
        for (int i = 0; i < 3; ++i)
            erasures.push_back({uniform(0, 90), uniform(0, 70), uniform(1, 6), uniform(0, 4), i});
        std::vector<std::uint8_t> mask(field.layer.pixelCount(), 0);
        for (std::size_t i = 0; i < mask.size(); ++i)
            mask[i] = std::hypot(static_cast<double>(i % 90) - erasures[1].x,
                                 static_cast<double>(i / 90) - erasures[1].y) < 8.0;
        Image keepBack;
        const std::vector<Star> all = field.find(params, erasures, &keepBack, &noise);
        std::vector<Star> fresh;
        const zre::LayerStats stats = zre::starsLayerStats(field.layer);
        for (const zre::LayerStats* known :
             {static_cast<const zre::LayerStats*>(nullptr), &stats}) {
            zre::detectStarsFromResidual(field.layer, fresh, params, &noise, &erasures, &keepBack,
                                         &mask, known);
            std::size_t at = 0;
            for (const Star& star : fresh) { // in the order of the whole, none twice
                while (at < all.size() && !same(all[at], star))
                    ++at;
                ASSERT_LT(at++, all.size()) << round;
            }
            std::vector<Star> spliced = all;
            EXPECT_EQ(zre::spliceStarsByCentroid(spliced, fresh), fresh.size()) << round;
        }
        for (const Star& star : all) { // none under the mask is missed
            const auto centre = static_cast<std::size_t>(std::lround(star.y)) * 90 +
                                static_cast<std::size_t>(std::lround(star.x));
            if (!mask[centre] || params.splitRatio > 0.0f || star.peak <= 0.2f)
                continue;
            const bool found = std::any_of(fresh.begin(), fresh.end(),
                                           [&](const Star& other) { return same(other, star); });
            EXPECT_TRUE(found) << round;
        }
    }
}

/// Peaks and the highest saddle between any two, by brute force.
std::size_t persistentPeaks(const Image& image, double ratio, double floor)
{
    // Two peaks are one when a path joins them above the ratio of the lower: flood each level.
    const int w = image.width;
    const auto at = [&](int i) { return static_cast<double>(image.plane(0)[i]); };
    std::vector<int> peaks;
    std::size_t kept = 0;
    for (int i = 0; i < w * image.height; ++i) {
        // A peak survives when nothing higher is reached without going below the ratio of it.
        std::vector<int> stack{i};
        std::vector<bool> seen(image.pixelCount());
        seen[static_cast<std::size_t>(i)] = true;
        bool highest = at(i) >= floor;
        while (!stack.empty() && highest) {
            const int p = stack.back();
            stack.pop_back();
            highest = at(p) <= at(i);
            const int steps[] = {p % w < w - 1 ? p + 1 : -1, p % w > 0 ? p - 1 : -1,
                                 p + w < w * image.height ? p + w : -1, p - w};
            for (const int n : steps)
                if (n >= 0 && !seen[static_cast<std::size_t>(n)] && at(n) >= ratio * at(i)) {
                    seen[static_cast<std::size_t>(n)] = true;
                    stack.push_back(n);
                }
        }
        kept += highest;
    }
    return kept;
}

TEST(RegionSplit, KeepsThePeaksThatStandApart)
{
    for (std::uint32_t seed = 1; seed < 40; ++seed) {
        const Image field = zrtest::noise(13, 11, 0, seed);
        std::vector<std::size_t> region(field.pixelCount());
        for (std::size_t i = 0; i < region.size(); ++i)
            region[i] = i;
        const auto parts = zre::splitRegionByPersistence(region, field.plane(0), 13, 0.6, 0.2);
        EXPECT_EQ(parts.size(), persistentPeaks(field, 0.6, 0.2)) << seed;
        std::vector<std::size_t> all;
        for (const auto& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        std::sort(all.begin(), all.end());
        EXPECT_EQ(all, region); // nothing lost, nothing twice
    }
}

TEST(LayerDetection, NonsenseIsTakenWithoutHarm)
{
    const float nan = std::nanf("");
    for (const Image& layer : {Image(), Image(1, 1, 0), Image(2, 9, 1), zrtest::noise(31, 17, 0, 1),
                               zrtest::noise(40, 40, 1, 2)}) {
        for (const float value : {nan, 0.0f, -1.0f, 1e30f}) {
            StarDetectParams params = options(value, value);
            params.minPeak = value;
            params.thresholdSigma = value;
            params.companionSeparation = value > 1.0f   ? std::numeric_limits<int>::max()
                                         : value < 0.0f ? -1
                                                        : 0;
            std::vector<Star> stars;
            std::vector<StarErasure> erasures{
                {1e300, -1e300, 1e300, 0, 2}, {5, 5, std::nan(""), 1, 1}, {8, 8, 4, -3, 2}};
            std::vector<std::uint8_t> mask(layer.pixelCount(), 1);
            Image keepBack;
            zre::detectStarsFromResidual(layer, stars, params, &layer, &erasures, &keepBack,
                                         nullptr);
            zre::detectStarsFromResidual(layer, stars, params, &layer, &erasures, &keepBack, &mask);
            mask.push_back(0);
            zre::detectStarsFromResidual(layer, stars, params, &layer, &erasures, &keepBack, &mask);
            EXPECT_TRUE(stars.empty());
        }
    }
}

} // namespace
