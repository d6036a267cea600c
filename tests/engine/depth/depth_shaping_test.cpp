#include "engine/depth/depth_shaping.h"

#include <limits>

#include "tests/support/testkit.h"

using zre::Image;

TEST(NormaliseDepth, FindsTheExtremesWhereverTheyStand)
{
    for (const std::size_t size : {2u, 15u, 16u, 17u, 47u})
        for (std::size_t at = 0; at < size; ++at) {
            Image depth(static_cast<int>(size), 1, 0);
            std::fill(depth.data.begin(), depth.data.end(), 3.0f);
            depth.data[at] = 5.0f;
            depth.data[(at + 1) % size] = -5.0f;
            zre::normaliseDepth(depth);
            EXPECT_EQ(depth.data[at], 1.0f) << size << " " << at;
            EXPECT_EQ(depth.data[(at + 1) % size], 0.0f) << size << " " << at;
            if (size > 2) {
                EXPECT_FLOAT_EQ(depth.data[(at + 2) % size], 0.8f) << size << " " << at;
            }
        }
}

TEST(NormaliseDepth, SamplesWithoutAValueBecomeFarAndStretchNothing)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const std::size_t first : {0u, 17u}) { // in the vector body and behind it
        Image depth(20, 1, 0);
        std::fill(depth.data.begin(), depth.data.end(), 2.0f);
        depth.data[9] = 1.0f;
        depth.data[first] = kInfinity;
        depth.data[first + 1] = -kInfinity;
        depth.data[first + 2] = std::numeric_limits<float>::quiet_NaN();
        zre::normaliseDepth(depth);
        for (std::size_t i = 0; i < depth.data.size(); ++i) {
            const bool far = i == 9 || (i >= first && i < first + 3);
            EXPECT_EQ(depth.data[i], far ? 0.0f : 1.0f) << i;
        }
    }
}
