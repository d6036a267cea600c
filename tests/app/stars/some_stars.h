#pragma once

#include <random>
#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

/// A star of one grey pixel value, `side` pixels wide, about a whole pixel.
inline zre::Star starAt(int x, int y, float peak, int side = 5)
{
    zre::Star star;
    star.x = x;
    star.y = y;
    star.peak = peak;
    star.boxX = x - side / 2;
    star.boxY = y - side / 2;
    star.boxW = star.boxH = side;
    star.channels = 1;
    star.sprite.assign(static_cast<std::size_t>(side * side), peak);
    star.alpha.assign(static_cast<std::size_t>(side * side), 1.0f);
    return star;
}

/// Stars without sprites, all over a picture of `side` pixels.
inline std::vector<zre::Star> scattered(int count, int side, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0.0, side);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    std::vector<zre::Star> stars(static_cast<std::size_t>(count));
    for (zre::Star& star : stars) {
        star.x = place(random);
        star.y = place(random);
        star.peak = unit(random);
        star.depth = unit(random);
        star.boxW = star.boxH = 3 + static_cast<int>(unit(random) * 9.0f);
    }
    return stars;
}
