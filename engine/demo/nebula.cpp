#include "engine/demo/nebula.h"

#include <algorithm>
#include <cmath>

#include "engine/demo/nebula_fields.h"
#include "engine/demo/noise.h"

namespace zre::demo {

namespace {

struct Light
{
    float r, g, b;
};

constexpr float kExposure = 1.75f;
constexpr float kWhitest = 0.89f; // so that sky and grain on top do not clip
constexpr float kLaneDepth = 0.58f;
constexpr float kLightReach = 0.0028f; // units over which the surface of the cloud catches light
constexpr Light kHydrogen{1.00f, 0.16f, 0.22f};
constexpr Light kOxygen{0.15f, 0.55f, 0.76f};
constexpr Light kEmber{1.00f, 0.17f, 0.13f};   // hydrogen of the outskirts, with sulphur
constexpr Light kSulphur{1.00f, 0.50f, 0.20f}; // where dust evaporates
constexpr Light kDust{0.42f, 0.27f, 0.20f};    // lit by stars
constexpr Light kExtinction{0.80f, 1.00f, 1.18f};

// The brightness that the eye sees of a sum of lights: below 1 however bright.
inline float exposed(float light)
{
    return 1.0f - expMinus(light);
}

// A field's slope along the way (awayX, awayY) at one point of the grid, from points `reach` away.
inline float slopeAlong(const Image& field, int gridX, int gridY, float awayX, float awayY,
                        int reach)
{
    const int left = std::max(gridX - reach, 0);
    const int right = std::min(gridX + reach, field.width - 1);
    const int up = std::max(gridY - reach, 0);
    const int down = std::min(gridY + reach, field.height - 1);
    const auto at = [&](int x, int y) {
        return field.data[static_cast<std::size_t>(y) * static_cast<std::size_t>(field.width) +
                          static_cast<std::size_t>(x)];
    };
    const float alongX = at(right, gridY) - at(left, gridY);
    const float alongY = at(gridX, down) - at(gridX, up);
    return (alongX * awayX + alongY * awayY) / static_cast<float>(2 * reach);
}

struct Point
{
    float hydrogen = 0.0f; ///< as in `NebulaFields`
    float oxygen = 0.0f;
    float presence = 0.0f;
    float lanes = 0.0f;
    float cloud = 0.0f;
    float radius = 0.0f; ///< from the cluster
    float lit = 0.0f;    ///< slope of the cloud towards the cluster
};

// Optical depth of the cloud in front: a thin haze before its edge, then nearly all.
inline float cloudOpacity(float inside)
{
    return 0.35f * smoothStep(-0.06f, 0.01f, inside) + 4.5f * smoothStep(-0.004f, 0.040f, inside);
}

// What the cloud in front gives of light itself.
struct CloudLight
{
    float blaze;   ///< hydrogen that streams off before the edge
    float sulphur; ///< along the edge, where it is lit
    float dust;    ///< within
};

inline CloudLight lightOfCloud(const Point& p, float opacity)
{
    const float strength = 1.0f / (1.0f + p.radius * p.radius * 9.0f);
    const float lit = std::min(std::max(p.lit, 0.0f), 1.6f);
    const float before = std::min(std::max(-60.0f * p.cloud, 0.0f), 20.0f);
    const float blaze = p.cloud < 0.0f ? 0.32f * expMinus(before) : 0.0f;
    const float edge = (p.cloud - 0.004f) / 0.008f;
    const float peak = 1.0f / (1.0f + edge * edge);
    const float sulphur = 1.3f * lit * peak * peak * (1.0f - expMinus(opacity));
    const float dust = (0.06f + 0.10f * lit) * smoothStep(0.0f, 0.03f, p.cloud);
    return {strength * blaze, strength * sulphur, strength * dust};
}

// The light of one point, layer upon layer from the back to the front.
inline Light lightOf(const Point& p, float opacity)
{
    const CloudLight front = lightOfCloud(p, opacity);
    const float hydrogen = p.hydrogen + front.blaze;
    const float ember = smoothStep(0.15f, 0.55f, p.radius);
    const float laneDust = 0.04f * p.lanes / (1.0f + p.lanes);
    const auto channel = [&](float Light::*c) {
        const float red = kHydrogen.*c + ember * (kEmber.*c - kHydrogen.*c);
        const float wall = red * hydrogen + kOxygen.*c * p.oxygen;
        const float behind = wall * expMinus(p.lanes * kExtinction.*c) + laneDust * kDust.*c;
        const float light = behind * expMinus(opacity * kExtinction.*c) +
                            kSulphur.*c * front.sulphur + kDust.*c * front.dust;
        return kWhitest * exposed(kExposure * light);
    };
    return {channel(&Light::r), channel(&Light::g), channel(&Light::b)};
}

// What one sees is how far: the hollow wall where it glows, the lanes before it where they are
// dense, the cloud in front, which swells towards its inside.
inline float depthOf(const Point& p, float opacity)
{
    const float bowl = 0.18f + 0.22f * smoothStep(0.0f, 0.35f, p.radius);
    const float wall = p.presence * (bowl + 0.16f * exposed(2.0f * p.hydrogen));
    const float behind = kLaneDepth + (wall - kLaneDepth) * expMinus(1.5f * p.lanes);
    const float cloud = 0.76f + 0.22f * smoothStep(0.0f, 0.16f, p.cloud);
    return cloud + (behind - cloud) * expMinus(1.6f * opacity);
}

void shadeRow(const Composition& scene, const NebulaFields& fields, float step, int gridY,
              Nebula& nebula)
{
    const int width = fields.cloud.width;
    const float pixel = step / scene.unit;
    const int reach = std::max(1, static_cast<int>(kLightReach / pixel + 0.5f));
    for (int gridX = 0; gridX < width; ++gridX) {
        const std::size_t at = static_cast<std::size_t>(gridY) * static_cast<std::size_t>(width) +
                               static_cast<std::size_t>(gridX);
        float x = 0.0f;
        float y = 0.0f;
        scene.gridToScene(gridX, gridY, step, x, y);
        const float radius = std::sqrt(x * x + y * y) + 1e-6f;
        const float awayX = (scene.cosine * x - scene.sine * y) * scene.mirror / radius;
        const float awayY = (scene.sine * x + scene.cosine * y) / radius;
        Point point;
        point.hydrogen = fields.hydrogen.data[at];
        point.oxygen = fields.oxygen.data[at];
        point.presence = fields.presence.data[at];
        point.lanes = fields.lanes.data[at];
        point.cloud = fields.cloud.data[at];
        point.radius = radius;
        point.lit = slopeAlong(fields.cloud, gridX, gridY, awayX, awayY, reach) / pixel;
        const float opacity = cloudOpacity(point.cloud);
        const Light light = lightOf(point, opacity);
        nebula.light.plane(0)[at] = light.r;
        nebula.light.plane(1)[at] = light.g;
        nebula.light.plane(2)[at] = light.b;
        nebula.depth.data[at] = depthOf(point, opacity);
        nebula.clearness.data[at] = expMinus(1.2f * (point.lanes + opacity));
    }
}

} // namespace

Nebula paintNebula(const Composition& scene, int width, int height, float step,
                   const Progress& progress)
{
    const NebulaFields fields =
        growFields(scene, width, height, step, subRange(progress, 0.0, 0.8));
    Nebula nebula{Image(width, height, 1), Image(width, height, 0), Image(width, height, 0)};
    const Progress shading = subRange(progress, 0.8, 1.0);
    for (int y = 0; y < height; ++y) {
        shadeRow(scene, fields, step, y, nebula);
        if (shading)
            shading((y + 1.0) / height);
    }
    return nebula;
}

} // namespace zre::demo
