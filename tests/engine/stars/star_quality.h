#pragma once

#include <array>
#include <vector>

#include "engine/demo/demo_scene.h"
#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace zrtest {

/// How well the stars of one range of brightness were found and taken out.
struct StarClass
{
    float fromPeak = 0.0f; ///< of the brightest channel, as painted
    int planted = 0;
    int found = 0;
    double pixels = 0.0; ///< samples inside the discs of these stars
    double differenceBefore = 0.0;
    double differenceAfter = 0.0;
    double darkAfter = 0.0; ///< the part of `differenceAfter` that is too dark

    double foundShare() const { return planted ? static_cast<double>(found) / planted : 1.0; }
    /// Mean absolute difference to the true starless picture, with the stars and without.
    double errorBefore() const { return pixels > 0.0 ? differenceBefore / pixels : 0.0; }
    double errorAfter() const { return pixels > 0.0 ? differenceAfter / pixels : 0.0; }
    double darkShare() const { return differenceAfter > 0.0 ? darkAfter / differenceAfter : 0.0; }
};

struct StarQuality
{
    std::array<StarClass, 5> classes{{{.fromPeak = 0.1f},
                                      {.fromPeak = 0.2f},
                                      {.fromPeak = 0.4f},
                                      {.fromPeak = 0.8f},
                                      {.fromPeak = 1.1f}}};
    int detected = 0;
    int falseFinds = 0; ///< no painted star at least half as bright lies in the sprite's box
    double errorElsewhere = 0.0;

    double falseShare() const
    {
        return detected ? static_cast<double>(falseFinds) / detected : 0.0;
    }
};

/// Holds what a detector made of the scene's picture against the scene's truth. A star counts as
/// found when a detection lies at most a pixel and a half away along both axes, and three sigma of
/// a star are its disc.
StarQuality starQuality(const zre::DemoScene& scene, const std::vector<zre::Star>& stars,
                        const zre::Image& starless);

} // namespace zrtest
