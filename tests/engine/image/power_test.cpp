#include "engine/image/power.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

TEST(RaiseToPower, AgreesWithTheLibraryOverAllMagnitudes)
{
    std::vector<double> bases{0.0, 1.0, 0.5, 0x1.6a09e667f3bcdp-1, 0x1.6a09e667f3bccp-1, 1e-45};
    for (double x = 1.0; x > 1e-40; x *= 0.9871)
        bases.push_back(x);
    for (const double exponent : {0.0, 0.2, 1.0 / 3.0, 0.5, 0.999, 1.0, 2.2, 5.0, 100.0}) {
        std::vector<double> raised = bases;
        zre::raiseToPower(raised.data(), raised.size(), exponent);
        std::vector<float> raisedFloats(bases.begin(), bases.end());
        zre::raiseToPower(raisedFloats.data(), raisedFloats.size(), exponent);
        for (std::size_t i = 0; i < bases.size(); ++i) {
            const double expected = std::pow(bases[i], exponent);
            ASSERT_NEAR(raised[i], expected, 1e-11 * expected + 1e-290)
                << bases[i] << "^" << exponent;
            const double ofFloat =
                std::pow(static_cast<double>(static_cast<float>(bases[i])), exponent);
            ASSERT_NEAR(raisedFloats[i], ofFloat, 6e-8 * ofFloat + 1e-44)
                << bases[i] << "^" << exponent;
        }
    }
}

TEST(RaiseToPower, KeepsTheEndsAndTheOrder)
{
    std::vector<float> samples;
    for (int i = 0; i <= 4099; ++i)
        samples.push_back(static_cast<float>(i) / 4099.0f);
    zre::raiseToPower(samples.data(), samples.size(), 0.45);
    EXPECT_EQ(samples.front(), 0.0f);
    EXPECT_EQ(samples.back(), 1.0f);
    for (std::size_t i = 1; i < samples.size(); ++i)
        ASSERT_LE(samples[i - 1], samples[i]);
}

TEST(RaiseToPower, VectorsAndSingleSamplesGiveTheSameBits)
{
    for (const double exponent : {0.45, 2.2}) {
        std::vector<double> together;
        for (int i = 0; i < 1003; ++i)
            together.push_back(i / 1003.0);
        std::vector<double> apart = together;
        zre::raiseToPower(together.data(), together.size(), exponent);
        for (double& sample : apart)
            zre::raiseToPower(&sample, 1, exponent);
        EXPECT_EQ(together, apart);
    }
}

TEST(RaiseToPower, ANanCountsAsZero)
{
    float sample = std::numeric_limits<float>::quiet_NaN();
    zre::raiseToPower(&sample, 1, 2.0);
    EXPECT_EQ(sample, 0.0f);
}
