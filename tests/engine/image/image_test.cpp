#include "engine/image/image.h"

#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "engine/image/raster.h"

using zre::Image;

namespace {

template <class Make>
std::string refusal(Make make)
{
    try {
        make();
    } catch (const std::length_error& e) {
        return e.what();
    }
    return "nothing was refused";
}

} // namespace

TEST(Image, ASizeThatNoVectorHoldsIsRefusedByItsName)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    const std::string tooLarge = "cannot create std::vector larger than max_size()";
    EXPECT_EQ(refusal([] { Image(kMost, kMost, 0); }), tooLarge);
    EXPECT_EQ(refusal([] { Image(kMost, kMost, 1); }), tooLarge);
    Image resampled;
    EXPECT_EQ(refusal([&] { zre::areaResample(Image(1, 1, 0), kMost, kMost, resampled); }),
              tooLarge);
}

TEST(Image, NegativeSizesCountAsNone)
{
    for (const Image& img : {Image(-3, 4, 1), Image(3, -4, 0), Image(-1, -1, 1)}) {
        EXPECT_FALSE(img.usable());
        EXPECT_TRUE(img.data.empty());
        EXPECT_GE(img.width, 0);
        EXPECT_GE(img.height, 0);
    }
}
