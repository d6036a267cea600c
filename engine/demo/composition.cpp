#include "engine/demo/composition.h"

#include <algorithm>
#include <cmath>

#include "engine/demo/noise.h"

namespace zre::demo {

namespace {

// The unit of a picture: the geometric mean of its sides, less for very long ones so that the
// nebula still shows across them.
float unitOf(int width, int height)
{
    const float w = static_cast<float>(width);
    const float h = static_cast<float>(height);
    return std::min(std::sqrt(w * h), 1.7f * std::min(w, h));
}

// The main pillars stand in one group to the side of the cluster, the others are lower.
Pillar drawPillar(Random& random, int index, float side)
{
    const bool main = index < 3;
    Pillar pillar;
    const float place = main ? side * (0.10f + 0.095f * static_cast<float>(index))
                             : -side * (0.02f + 0.15f * static_cast<float>(index - 3));
    pillar.footX = place * 1.5f + random.between(-0.02f, 0.02f);
    pillar.footY = 0.46f;
    pillar.tipX = place * 0.80f + random.between(-0.02f, 0.02f);
    pillar.tipY = main ? 0.07f + 0.05f * static_cast<float>(index) + random.between(-0.03f, 0.03f)
                       : random.between(0.21f, 0.27f);
    pillar.footWidth = main ? random.between(0.050f, 0.075f) : random.between(0.04f, 0.08f);
    pillar.tipWidth = main ? random.between(0.016f, 0.030f) : random.between(0.010f, 0.018f);
    pillar.bend = random.between(-0.03f, 0.03f);
    return pillar;
}

} // namespace

Composition composeScene(int width, int height, std::uint64_t seed)
{
    Random random(seed ^ 0x7a65727269746831U);
    Composition scene;
    scene.unit = unitOf(width, height);
    scene.centreX = static_cast<float>(width) * random.between(0.48f, 0.58f) - 0.5f;
    scene.centreY = static_cast<float>(height) * random.between(0.40f, 0.46f) - 0.5f;
    const float slope = random.between(-0.28f, 0.28f);
    const float length = std::sqrt(1.0f + slope * slope);
    scene.cosine = 1.0f / length;
    scene.sine = slope / length;
    scene.mirror = random.uniform() < 0.5f ? -1.0f : 1.0f;
    scene.squeeze = random.between(1.0f, 1.25f);
    scene.oxygen = random.between(0.8f, 1.2f);
    scene.horizon = random.between(0.29f, 0.33f);
    scene.tilt = random.between(-0.15f, 0.15f);
    const float side = random.uniform() < 0.5f ? -1.0f : 1.0f;
    for (std::size_t i = 0; i < scene.pillars.size(); ++i)
        scene.pillars[i] = drawPillar(random, static_cast<int>(i), side);
    scene.seed = static_cast<std::uint32_t>(random.next() >> 32);
    return scene;
}

} // namespace zre::demo
