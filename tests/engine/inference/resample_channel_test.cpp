#include "engine/inference/resample_channel.h"

#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

namespace {

struct Sizes
{
    int srcW, srcH, dstW, dstH;
};

// a + b x + c y + d x y is what bilinear interpolation keeps exactly.
double surface(double x, double y)
{
    return 0.25 + 0.5 * x - 0.125 * y + 0.75 * x * y;
}

double share(int position, int count)
{
    return count > 1 ? double(position) / (count - 1) : 0.0;
}

TEST(ResampleChannel, KeepsABilinearSurface)
{
    for (const Sizes& s : {Sizes{2, 2, 9, 5},
                           {17, 9, 4, 3},
                           {5, 7, 5, 7},
                           {31, 3, 518, 50},
                           {4, 4, 1, 1},
                           {1, 1, 3, 4},
                           {1, 6, 4, 11}}) {
        std::vector<float> source(std::size_t(s.srcW) * std::size_t(s.srcH));
        for (int y = 0; y < s.srcH; ++y)
            for (int x = 0; x < s.srcW; ++x)
                source[std::size_t(y * s.srcW + x)] =
                    float(surface(share(x, s.srcW), share(y, s.srcH)));
        std::vector<float> given(std::size_t(s.dstW) * std::size_t(s.dstH), -1.0f);
        zre::resampleChannel(source.data(), s.srcW, s.srcH, given.data(), s.dstW, s.dstH);
        for (int y = 0; y < s.dstH; ++y)
            for (int x = 0; x < s.dstW; ++x)
                EXPECT_NEAR(given[std::size_t(y * s.dstW + x)],
                            surface(s.srcW > 1 ? share(x, s.dstW) : 0.0,
                                    s.srcH > 1 ? share(y, s.dstH) : 0.0),
                            1e-6)
                    << s.srcW << "x" << s.srcH << " to " << s.dstW << "x" << s.dstH << " at " << x
                    << ", " << y;
    }
}

TEST(ResampleChannel, CornersFallOnCorners)
{
    const zre::Image source = zrtest::noise(83, 61, 0, 5);
    for (const auto& [w, h] : {std::array{20, 900}, {83, 61}, {200, 2}, {997, 331}}) {
        std::vector<float> given(std::size_t(w) * std::size_t(h));
        zre::resampleChannel(source.plane(0), 83, 61, given.data(), w, h);
        EXPECT_EQ(given.front(), source.data.front());
        EXPECT_EQ(given[std::size_t(w) - 1], source.data[82]);
        EXPECT_EQ(given[given.size() - std::size_t(w)], source.data[83 * 60]);
        EXPECT_EQ(given.back(), source.data.back());
    }
}

TEST(ResampleChannel, LeavesTheTargetWithoutASize)
{
    float sample = 0.5f;
    float target = 7.0f;
    zre::resampleChannel(&sample, 0, 1, &target, 1, 1);
    zre::resampleChannel(&sample, 1, -1, &target, 1, 1);
    zre::resampleChannel(&sample, 1, 1, &target, 1, 0);
    EXPECT_EQ(target, 7.0f);
}

} // namespace
