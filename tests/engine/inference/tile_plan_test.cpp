#include "engine/inference/tile_plan.h"

#include <climits>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zre::TileSpan;

TEST(TilePlan, EndsAtTheFirstTileThatReachesTheEdge)
{
    EXPECT_THAT(zre::planTiles(1000, 512, 64),
                ElementsAre(TileSpan{0, 512}, TileSpan{448, 512}, TileSpan{896, 104}));
    EXPECT_THAT(zre::planTiles(960, 512, 64), ElementsAre(TileSpan{0, 512}, TileSpan{448, 512}));
    EXPECT_THAT(zre::planTiles(961, 512, 64),
                ElementsAre(TileSpan{0, 512}, TileSpan{448, 512}, TileSpan{896, 65}));
    EXPECT_THAT(zre::planTiles(512, 512, 64), ElementsAre(TileSpan{0, 512}));
    EXPECT_THAT(zre::planTiles(100, 512, 64), ElementsAre(TileSpan{0, 100}));
    EXPECT_THAT(zre::planTiles(5, 2, 0),
                ElementsAre(TileSpan{0, 2}, TileSpan{2, 2}, TileSpan{4, 1}));
    EXPECT_THAT(zre::planTiles(INT_MAX, INT_MAX, 64), ElementsAre(TileSpan{0, INT_MAX}));
}

TEST(TilePlan, HostileSizesEnd)
{
    EXPECT_THAT(zre::planTiles(0, 512, 64), IsEmpty());
    EXPECT_THAT(zre::planTiles(-5, 512, 64), IsEmpty());
    EXPECT_THAT(zre::planTiles(3, INT_MIN, INT_MAX),
                ElementsAre(TileSpan{0, 1}, TileSpan{1, 1}, TileSpan{2, 1}));
    EXPECT_THAT(zre::planTiles(6, 4, 4),
                ElementsAre(TileSpan{0, 4}, TileSpan{1, 4}, TileSpan{2, 4}));
    EXPECT_THAT(zre::planTiles(4, 2, INT_MIN), ElementsAre(TileSpan{0, 2}, TileSpan{2, 2}));
    EXPECT_THAT(zre::tileWeights(-1, 4), IsEmpty());
}

TEST(TilePlan, NeighboursFadeIntoEachOther)
{
    EXPECT_THAT(zre::tileWeights(6, 2),
                ElementsAre(1.0f / 3, 2.0f / 3, 1.0f, 1.0f, 2.0f / 3, 1.0f / 3));
    EXPECT_THAT(zre::tileWeights(1, 64), ElementsAre(1.0f));
    EXPECT_THAT(zre::tileWeights(3, 0), ElementsAre(1.0f, 1.0f, 1.0f));
    // Shorter than two overlaps: the slopes meet below 1.
    EXPECT_THAT(zre::tileWeights(3, 7), ElementsAre(1.0f / 8, 2.0f / 8, 1.0f / 8));

    const int overlap = 64;
    std::vector<double> sum(1408);
    for (const TileSpan& span : zre::planTiles(1408, 512, overlap)) {
        const std::vector<float> weights = zre::tileWeights(span.size, overlap);
        for (std::size_t i = 0; i < weights.size(); ++i)
            sum[static_cast<std::size_t>(span.origin) + i] += static_cast<double>(weights[i]);
    }
    for (std::size_t x = 0; x < sum.size(); ++x) {
        const std::size_t toEdge = std::min(x, sum.size() - 1 - x);
        const double expected = std::min(1.0, (static_cast<double>(toEdge) + 1) / (overlap + 1));
        EXPECT_NEAR(sum[x], expected, 1e-6) << x;
    }
}

} // namespace
