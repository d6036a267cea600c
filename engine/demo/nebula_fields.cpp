#include "engine/demo/nebula_fields.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/demo/noise.h"

namespace zre::demo {

namespace {

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
    for (int i = 0; i < row.n; ++i)
        scene.gridToScene(i, gridY, step, row.x[i], row.y[i]);
}

// Bends the coordinates, so that the structures laid on them flow.
void warpRow(const Composition& scene, Row& row)
{
    constexpr float kStrength = 0.16f;
    const Fractal along{1.9f, 0.42f, 5, scene.seed + 1U};
    const Fractal across{1.9f, 0.42f, 5, scene.seed + 2U};
    fractalRow(along, row.pixel, row.x.data(), row.y.data(), row.warpedX.data(), row.n);
    fractalRow(across, row.pixel, row.x.data(), row.y.data(), row.warpedY.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        row.warpedX[i] = row.x[i] + kStrength * row.warpedX[i];
        row.warpedY[i] = row.y[i] + kStrength * row.warpedY[i];
        const float squeezed = scene.squeeze * row.warpedY[i];
        row.radius[i] = std::sqrt(row.warpedX[i] * row.warpedX[i] + squeezed * squeezed);
    }
}

// The glowing back wall: a shell of hydrogen, combed into filaments, about a cavity of oxygen
// light.
void glowRow(const Composition& scene, Row& row, float* hydrogen, float* oxygen, float* presence)
{
    const float* x = row.warpedX.data();
    const float* y = row.warpedY.data();
    fractalRow({2.3f, 0.55f, 12, scene.seed + 11U}, row.pixel, x, y, row.a.data(), row.n);
    ridgedRow({3.7f, 0.62f, 12, scene.seed + 13U}, row.pixel, x, y, row.weight.data(), row.b.data(),
              row.n);
    fractalRow({1.3f, 0.5f, 12, scene.seed + 17U}, row.pixel, x, y, row.c.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float r = row.radius[i];
        const float veil = smoothStep(-0.45f, 0.55f, row.a[i]);
        const float thread = smoothStep(0.30f, 0.95f, row.b[i]);
        const float reach = 0.40f + 0.22f * row.c[i];
        const float q = r / reach;
        const float envelope = 1.0f / (1.0f + q * q * q * q);
        const float ring = 4.0f * r * r / ((r + 0.16f) * (r + 0.16f));
        const float wall = envelope * (0.22f + 0.78f * smoothStep(0.0f, 0.22f, r)) * (0.4f + ring);
        hydrogen[i] = wall * (0.04f + 0.50f * veil * veil + thread * (0.12f + 0.75f * veil));
        presence[i] = smoothStep(-0.02f, 0.60f, envelope * (0.65f + 0.9f * row.a[i]));
        const float core = 1.0f / (1.0f + r * r * (1.0f / (0.24f * 0.24f)));
        oxygen[i] = scene.oxygen * core * core * (0.22f + 0.60f * veil + 0.8f * thread);
    }
}

// Dark lanes in front of the wall, torn at their edges.
void laneRow(const Composition& scene, Row& row, const float* presence, float* lanes)
{
    const float* x = row.warpedX.data();
    const float* y = row.warpedY.data();
    fractalRow({2.1f, 0.60f, 12, scene.seed + 23U}, row.pixel, x, y, row.a.data(), row.n);
    fractalRow({1.4f, 0.40f, 3, scene.seed + 29U}, row.pixel, x, y, row.b.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float along = row.b[i] < 0.0f ? -row.b[i] : row.b[i];
        const float body = row.a[i] + 0.22f - 3.2f * along;
        const float lane = 0.25f * smoothStep(-0.15f, 0.30f, body) + smoothStep(0.06f, 0.34f, body);
        const float away = smoothStep(0.11f, 0.20f, row.radius[i]);
        lanes[i] = 2.2f * lane * away * smoothStep(0.05f, 0.70f, presence[i]);
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
    const float head = 1.0f - (t - 0.93f) * (t - 0.93f) * 90.0f;
    const float width =
        pillar.footWidth + t * (pillar.tipWidth - pillar.footWidth) + 0.009f * std::max(head, 0.0f);
    return width - std::sqrt(dx * dx + dy * dy);
}

// The cloud in front: a dark shore with pillars that the light of the cluster has left standing.
void cloudRow(const Composition& scene, Row& row, float* cloud)
{
    const float* rowX = row.x.data();
    const float* rowY = row.y.data();
    fractalRow({3.4f, 0.55f, 12, scene.seed + 37U}, row.pixel, rowX, rowY, row.a.data(), row.n);
    fractalRow({3.4f, 0.55f, 12, scene.seed + 39U}, row.pixel, rowX, rowY, row.c.data(), row.n);
    ridgedRow({7.0f, 0.50f, 12, scene.seed + 41U}, row.pixel, row.warpedX.data(),
              row.warpedY.data(), row.weight.data(), row.b.data(), row.n);
    for (int i = 0; i < row.n; ++i) {
        const float x = row.x[i] + 0.075f * row.a[i];
        const float y = row.y[i] + 0.075f * row.c[i];
        float inside = y - scene.horizon + scene.tilt * x;
        for (const Pillar& pillar : scene.pillars)
            inside = softMax(inside, insidePillar(pillar, x, y), 0.05f);
        const float rough = std::min(1.0f, std::max(0.0f, (y - 0.15f) * 4.0f));
        cloud[i] = inside + rough * 0.06f * row.c[i] - 0.022f * (row.b[i] - 0.30f);
    }
}

} // namespace

NebulaFields growFields(const Composition& scene, int width, int height, float step,
                        const Progress& progress)
{
    NebulaFields fields(width, height);
    Row row(width);
    row.pixel = step / scene.unit;
    for (int y = 0; y < height; ++y) {
        const std::size_t start = static_cast<std::size_t>(y) * row.length();
        float* presence = fields.presence.plane(0) + start;
        placeRow(scene, step, y, row);
        warpRow(scene, row);
        glowRow(scene, row, fields.hydrogen.plane(0) + start, fields.oxygen.plane(0) + start,
                presence);
        laneRow(scene, row, presence, fields.lanes.plane(0) + start);
        cloudRow(scene, row, fields.cloud.plane(0) + start);
        if (progress)
            progress((y + 1.0) / height);
    }
    return fields;
}

} // namespace zre::demo
