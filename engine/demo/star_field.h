#pragma once

#include <cstdint>
#include <vector>

#include "engine/demo/composition.h"
#include "engine/demo/demo_scene.h"

namespace zre::demo {

/// What the stars of a scene are drawn against.
struct StarGround
{
    const Image& starless; ///< of the picture's size, as is `depth`
    const Image& depth;
    const Image& clearness; ///< the share of the light of a star behind the nebula that passes
    float step = 1.0f;      ///< pixels between samples of `clearness`
};

/// Draws `count` stars: many faint, few bright, most behind the nebula and dimmed by its dust, and
/// about one in forty in the cluster at the centre of `scene`.
std::vector<DemoStar> drawStars(const Composition& scene, const StarGround& ground, int count,
                                std::uint64_t seed);

/// Adds the light of one star to an RGB picture: a Gaussian core with a wide faint halo that is
/// more coloured, and four thin spikes when it is bright. The sum at the star's place is `peak`.
void addStar(const DemoStar& star, Image& picture);

} // namespace zre::demo
