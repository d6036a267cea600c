#include "engine/demo/nebula.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "engine/demo/noise.h"
#include "engine/image/multiversion.h"

namespace zre::demo {

namespace {

// What the first pass leaves for the second, on the grid of the nebula.
struct Fields
{
    Image hydrogen; ///< strength of the red light
    Image oxygen;   ///< of the blue-green light
    Image lanes;    ///< optical depth of the dust lanes in the middle distance
    Image cloud;    ///< signed distance into the cloud in front, units; positive inside

    Fields(int width, int height)
        : hydrogen(width, height, 0)
        , oxygen(width, height, 0)
        , lanes(width, height, 0)
        , cloud(width, height, 0)
    {
    }
};

// The values of one row of the grid that several fields share.
struct Row
{
    int n = 0;
    float pixel = 0.0f; ///< units
    std::vector<float> x, y, radius;
    std::vector<float> warpedX, warpedY;
    std::vector<float> a, b, c, weight;

    explicit Row(int size)
        : n(size)
        , x(length())
        , y(length())
        , radius(length())
        , warpedX(length())
        , warpedY(length())
        , a(length())
        , b(length())
        , c(length())
        , weight(length())
    {
    }
    std::size_t length() const { return static_cast<std::size_t>(n); }
};

void placeRow(const Composition& scene, float step, int gridY, Row& row)
{
    const float y = (static_cast<float>(gridY) + 0.5f) * step - 0.5f;
    for (int i = 0; i < row.n; ++i) {
        const float x = (static_cast<float>(i) + 0.5f) * step - 0.5f;
        scene.toScene(x, y, row.x[i], row.y[i]);
    }
}

// Bends the coordinates, so that the structures laid on them flow.
void warpRow(const Composition& scene, float strength, std::uint32_t salt, Row& row)
{
    const Fractal along{1.9f, 0.5f, 5, scene.seed + salt};
    const Fractal across{1.9f, 0.5f, 5, scene.seed + salt + 1U};
    fractalRow(along, row.pixel, row.x.data(), row.y.data(), row.warpedX.data(), row.n);
    fractalRow(across, row.pixel, row.x.data(), row.y.data(), row.warpedY.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        row.warpedX[i] = row.x[i] + strength * row.warpedX[i];
        row.warpedY[i] = row.y[i] + strength * row.warpedY[i];
        row.radius[i] =
            std::sqrt(row.warpedX[i] * row.warpedX[i] + row.warpedY[i] * row.warpedY[i]);
    }
}

// The glowing back wall: a shell of hydrogen, combed into filaments, about a cavity of oxygen
// light.
void glowRow(const Composition& scene, Row& row, float* hydrogen, float* oxygen)
{
    const float* x = row.warpedX.data();
    const float* y = row.warpedY.data();
    fractalRow({2.3f, 0.55f, 12, scene.seed + 11U}, row.pixel, x, y, row.a.data(), row.n);
    ridgedRow({3.1f, 0.55f, 12, scene.seed + 13U}, row.pixel, x, y, row.weight.data(), row.b.data(),
              row.n);
    fractalRow({1.3f, 0.5f, 12, scene.seed + 17U}, row.pixel, x, y, row.c.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float r = row.radius[i];
        const float veil = smoothStep(-0.55f, 0.6f, row.a[i]);
        const float thread = row.b[i] * row.b[i];
        const float reach = 0.42f + 0.16f * row.c[i];
        const float q = r / reach;
        const float envelope = 1.0f / (1.0f + q * q * q * q);
        const float wall = 0.25f + 0.75f * smoothStep(0.02f, 0.24f, r);
        hydrogen[i] = envelope * wall * (0.10f + 0.75f * veil + 1.5f * thread * (0.3f + veil));
        const float core = 1.0f / (1.0f + r * r * (1.0f / (0.21f * 0.21f)));
        oxygen[i] = scene.oxygen * core * core * (0.35f + 0.6f * veil + 0.9f * thread);
    }
}

// Dark lanes in front of the wall, thin and torn.
void laneRow(const Composition& scene, Row& row, float* lanes)
{
    const float* x = row.warpedX.data();
    const float* y = row.warpedY.data();
    ridgedRow({1.7f, 0.6f, 12, scene.seed + 23U}, row.pixel, x, y, row.weight.data(), row.a.data(),
              row.n);
    fractalRow({1.5f, 0.55f, 12, scene.seed + 29U}, row.pixel, x, y, row.b.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float torn = smoothStep(-0.05f, 0.40f, row.b[i]);
        const float lane = smoothStep(0.42f, 0.85f, row.a[i]);
        const float away = smoothStep(0.05f, 0.16f, row.radius[i]);
        lanes[i] = 2.6f * lane * torn * away;
    }
}

inline float softMax(float a, float b, float width)
{
    const float d = (a - b) / width;
    const float bound = std::max(0.0f, 1.0f - std::fabs(d));
    return std::max(a, b) + 0.25f * width * bound * bound;
}

// The distance into a pillar, positive inside.
inline float insidePillar(const Pillar& pillar, float x, float y)
{
    const float axisX = pillar.tipX - pillar.footX;
    const float axisY = pillar.tipY - pillar.footY;
    const float square = axisX * axisX + axisY * axisY;
    const float along = ((x - pillar.footX) * axisX + (y - pillar.footY) * axisY) / square;
    const float t = std::min(std::max(along, 0.0f), 1.0f);
    const float sideways = 4.0f * pillar.bend * t * (1.0f - t);
    const float dx = x - pillar.footX - t * axisX + sideways * axisY / std::sqrt(square);
    const float dy = y - pillar.footY - t * axisY - sideways * axisX / std::sqrt(square);
    const float width = pillar.footWidth + t * (pillar.tipWidth - pillar.footWidth);
    return width - std::sqrt(dx * dx + dy * dy);
}

// The cloud in front: a dark shore with pillars that the light of the cluster has left standing.
void cloudRow(const Composition& scene, Row& row, float* cloud)
{
    fractalRow({3.0f, 0.52f, 12, scene.seed + 31U}, row.pixel, row.x.data(), row.y.data(),
               row.a.data(), row.n);
    ridgedRow({7.0f, 0.5f, 12, scene.seed + 37U}, row.pixel, row.warpedX.data(), row.warpedY.data(),
              row.weight.data(), row.b.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float x = row.x[i] + 0.02f * row.b[i];
        const float y = row.y[i];
        float inside = y - scene.horizon - scene.tilt * x;
        for (const Pillar& pillar : scene.pillars)
            inside = softMax(inside, insidePillar(pillar, x, y), 0.05f);
        const float rough = std::min(1.0f, std::max(0.25f, (y + 0.05f) * 3.5f));
        cloud[i] = inside + rough * 0.10f * row.a[i] - 0.035f * (row.b[i] - 0.35f);
    }
}

struct Light
{
    float r, g, b;
};

constexpr Light kHydrogen{1.00f, 0.20f, 0.26f};
constexpr Light kOxygen{0.10f, 0.62f, 0.72f};
constexpr Light kSulphur{1.00f, 0.52f, 0.20f}; // where dust evaporates
constexpr Light kDust{0.42f, 0.27f, 0.20f};    // lit by stars
constexpr Light kExtinction{0.75f, 1.00f, 1.22f};

// The brightness that the eye sees of a sum of lights: below 1 however bright.
inline float exposed(float light)
{
    return light / (1.0f + light);
}

// One point's slope of the cloud's surface along the way from the cluster, above 0 where it is lit.
inline float litSlope(const Image& cloud, int gridX, int gridY, float awayX, float awayY,
                      float spacing)
{
    const int left = std::max(gridX - 1, 0);
    const int right = std::min(gridX + 1, cloud.width - 1);
    const int up = std::max(gridY - 1, 0);
    const int down = std::min(gridY + 1, cloud.height - 1);
    const auto at = [&](int x, int y) {
        return cloud.data[static_cast<std::size_t>(y) * static_cast<std::size_t>(cloud.width) +
                          static_cast<std::size_t>(x)];
    };
    const float alongX = at(right, gridY) - at(left, gridY);
    const float alongY = at(gridX, down) - at(gridX, up);
    return (alongX * awayX + alongY * awayY) / (2.0f * spacing);
}

struct Point
{
    float hydrogen, oxygen, lanes, cloud;
    float radius; ///< from the cluster
    float lit;    ///< slope of the cloud towards the cluster
};

// Adds up the layers of one point, from the back to the front.
void shadePoint(const Point& p, Light& light, float& depth, float& clearness)
{
    const float strength = 1.0f / (1.0f + p.radius * p.radius * 9.0f);
    const float lit = std::min(std::max(p.lit, 0.0f), 2.0f);
    const float haze = 0.5f * smoothStep(-0.07f, 0.02f, p.cloud);
    const float opacity = 4.5f * smoothStep(-0.002f, 0.035f, p.cloud);
    const float halo = p.cloud < 0.0f ? expMinus(std::min(-p.cloud * 40.0f, 20.0f)) : 0.0f;
    const float edge = (p.cloud - 0.006f) / 0.010f;
    const float rim = 1.0f / (1.0f + edge * edge);
    const float sulphur = strength * lit * (1.1f * rim + 0.12f);
    const float relief = strength * (0.10f + 0.35f * lit) * smoothStep(0.0f, 0.03f, p.cloud);
    const float blaze = 0.55f * halo * strength * lit;
    const float front = opacity + haze;
    const float frontShade = expMinus(front * 1.0f);
    const auto channel = [&](float Light::*c) {
        const float wall = kHydrogen.*c * (p.hydrogen + blaze) + kOxygen.*c * p.oxygen;
        const float behind = wall * expMinus(p.lanes * kExtinction.*c) +
                             0.05f * kDust.*c * (p.lanes / (1.0f + p.lanes));
        return exposed(1.35f * (behind * expMinus(front * kExtinction.*c) +
                                kSulphur.*c * sulphur * (1.0f - frontShade) + kDust.*c * relief));
    };
    light = {channel(&Light::r), channel(&Light::g), channel(&Light::b)};
    const float glow = p.hydrogen + p.oxygen;
    const float bowl = 0.16f + 0.22f * smoothStep(0.0f, 0.40f, p.radius) + 0.10f * exposed(glow);
    depth = bowl * smoothStep(0.02f, 0.35f, glow);
    const float laneShade = expMinus(p.lanes * 1.5f);
    depth = 0.55f + (depth - 0.55f) * laneShade;
    const float swell = smoothStep(0.0f, 0.16f, p.cloud);
    const float nearness = 0.74f + 0.26f * swell;
    depth = nearness + (depth - nearness) * expMinus(1.6f * front);
    clearness = expMinus(1.2f * (p.lanes + front));
}

void shadeRow(const Composition& scene, const Fields& fields, Row& row, int gridY, Nebula& nebula)
{
    const std::size_t start = static_cast<std::size_t>(gridY) * row.length();
    for (int i = 0; i < row.n; ++i) {
        const std::size_t at = start + static_cast<std::size_t>(i);
        const float radius = std::sqrt(row.x[i] * row.x[i] + row.y[i] * row.y[i]) + 1e-6f;
        const float gridDx = (scene.cosine * row.x[i] - scene.sine * row.y[i]) * scene.mirror;
        const float gridDy = scene.sine * row.x[i] + scene.cosine * row.y[i];
        const Point point{
            fields.hydrogen.data[at],
            fields.oxygen.data[at],
            fields.lanes.data[at],
            fields.cloud.data[at],
            radius,
            litSlope(fields.cloud, i, gridY, gridDx / radius, gridDy / radius, row.pixel)};
        Light light{};
        shadePoint(point, light, nebula.depth.data[at], nebula.clearness.data[at]);
        nebula.light.plane(0)[at] = light.r;
        nebula.light.plane(1)[at] = light.g;
        nebula.light.plane(2)[at] = light.b;
    }
}

} // namespace

Nebula paintNebula(const Composition& scene, int width, int height, float step,
                   const Progress& progress)
{
    Fields fields(width, height);
    Row row(width);
    row.pixel = step / scene.unit;
    for (int y = 0; y < height; ++y) {
        const std::size_t start = static_cast<std::size_t>(y) * row.length();
        placeRow(scene, step, y, row);
        warpRow(scene, 0.16f, 1U, row);
        glowRow(scene, row, fields.hydrogen.data.data() + start, fields.oxygen.data.data() + start);
        laneRow(scene, row, fields.lanes.data.data() + start);
        cloudRow(scene, row, fields.cloud.data.data() + start);
        if (progress)
            progress(0.8 * (y + 1) / height);
    }
    Nebula nebula{Image(width, height, 1), Image(width, height, 0), Image(width, height, 0)};
    for (int y = 0; y < height; ++y) {
        placeRow(scene, step, y, row);
        shadeRow(scene, fields, row, y, nebula);
        if (progress)
            progress(0.8 + 0.2 * (y + 1) / height);
    }
    return nebula;
}

} // namespace zre::demo
