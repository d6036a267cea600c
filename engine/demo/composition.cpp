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

// The first three stand in one group to the side of the cluster, the others are lower.
Pillar drawPillar(Random& random, int index, float side)
{
    const bool main = index < 3;
    const float order = static_cast<float>(main ? index : index - 3);
    const float place = main ? side * (0.04f + 0.105f * order) : -side * (0.17f + 0.19f * order);
    Pillar pillar;
    pillar.footX = place * 1.7f + random.between(-0.03f, 0.03f);
    pillar.footY = 0.48f;
    pillar.tipX = place + random.between(-0.025f, 0.025f);
    pillar.tipY =
        main ? 0.12f + 0.06f * order + random.between(-0.02f, 0.03f) : random.between(0.24f, 0.30f);
    pillar.footWidth = main ? random.between(0.055f, 0.080f) : random.between(0.05f, 0.10f);
    pillar.tipWidth = main ? random.between(0.026f, 0.036f) : random.between(0.016f, 0.028f);
    pillar.bend = random.between(-0.03f, 0.03f);
    return pillar;
}

} // namespace

Composition composeScene(int width, int height, std::uint64_t seed)
{
    Random random(seed ^ 0x51ab6U);
    Composition scene;
    scene.unit = unitOf(width, height);
    scene.centreX = static_cast<float>(width) * random.between(0.48f, 0.58f) - 0.5f;
    const float shore = static_cast<float>(height) * random.between(0.87f, 0.92f);
    scene.centreY = std::clamp(shore - 0.40f * scene.unit, 0.2f * static_cast<float>(height),
                               0.7f * static_cast<float>(height));
    const float slope = random.between(-0.28f, 0.28f);
    const float length = std::sqrt(1.0f + slope * slope);
    scene.cosine = 1.0f / length;
    scene.sine = slope / length;
    scene.mirror = random.uniform() < 0.5f ? -1.0f : 1.0f;
    scene.squeeze = random.between(1.0f, 1.25f);
    scene.oxygen = random.between(0.8f, 1.2f);
    scene.horizon = random.between(0.35f, 0.38f);
    const float side = random.uniform() < 0.5f ? -1.0f : 1.0f;
    scene.tilt = side * random.between(0.08f, 0.22f);
    for (std::size_t i = 0; i < scene.pillars.size(); ++i)
        scene.pillars[i] = drawPillar(random, static_cast<int>(i), side);
    scene.seed = static_cast<std::uint32_t>(random.next() >> 32);
    return scene;
}

} // namespace zre::demo
