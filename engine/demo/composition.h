#pragma once

#include <array>
#include <cstdint>

namespace zre::demo {

/// A finger of dust: a tapered, slightly bent column from its foot to its tip.
struct Pillar
{
    float footX = 0.0f;
    float footY = 0.0f;
    float tipX = 0.0f;
    float tipY = 0.0f;
    float footWidth = 0.05f; ///< half widths
    float tipWidth = 0.02f;
    float bend = 0.0f; ///< sideways reach of the middle
};

/// Where the parts of one scene lie.
///
/// Scene coordinates have the cluster at the origin, which lights the nebula about it, and the dust
/// cloud in front towards positive y. The unit is near the geometric mean of the sides, so that the
/// same scene fills pictures of every size and shape.
struct Composition
{
    float centreX = 0.0f; ///< of the cluster, pixel index coordinates
    float centreY = 0.0f;
    float unit = 1.0f; ///< pixels
    float cosine = 1.0f;
    float sine = 0.0f;
    float mirror = 1.0f;  ///< 1 or -1
    float squeeze = 1.0f; ///< of the nebula along y
    float oxygen = 1.0f;  ///< strength of the blue-green light
    float horizon = 0.3f; ///< y of the cloud's mean edge
    float tilt = 0.0f;    ///< of that edge
    std::array<Pillar, 5> pillars{};
    std::uint32_t seed = 0;

    /// The place of a point of a grid whose points lie `step` pixels apart.
    void gridToScene(int gridX, int gridY, float step, float& sceneX, float& sceneY) const
    {
        const float x = (static_cast<float>(gridX) + 0.5f) * step - 0.5f;
        const float y = (static_cast<float>(gridY) + 0.5f) * step - 0.5f;
        const float dx = (x - centreX) / unit * mirror;
        const float dy = (y - centreY) / unit;
        sceneX = cosine * dx + sine * dy;
        sceneY = cosine * dy - sine * dx;
    }
};

/// Draws the composition of a seed for a picture of `width` by `height` pixels.
Composition composeScene(int width, int height, std::uint64_t seed);

} // namespace zre::demo
