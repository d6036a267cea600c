#include "engine/depth/depth_map.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "engine/image/histogram.h"
#include "engine/image/multiversion.h"

namespace zre {

namespace {

struct Anchor
{
    float floor;  // depths at or below stay
    float span;   // height above the floor at which the fit is full
    float level;  // where the object stands
    float target; // where it goes
    float fit;
    float thickness;
};

} // namespace

static double backgroundFloor(const Image& depth, const ZRParams& p)
{
    double floor = static_cast<double>(p.backgroundFloor);
    if (p.floorAuto) {
        const std::size_t n = depth.pixelCount();
        const auto target = static_cast<std::uint64_t>(static_cast<double>(n) * 0.1);
        const int bin = histogramOf(depth.plane(0), n).binReaching(target);
        floor = bin < 0 ? 0.0 : std::min(Histogram::centre(bin), 0.15);
    }
    return std::clamp(floor, 0.0, 0.98);
}

/// The 80th percentile of what lies above `floor`, or `fallback` when nothing does.
static double objectLevel(const Image& depth, double floor, double fallback)
{
    const Histogram above = histogramAbove(depth.plane(0), depth.pixelCount(), floor);
    const std::uint64_t count =
        std::accumulate(above.count.begin(), above.count.end(), std::uint64_t{0});
    if (count == 0)
        return fallback;
    const int bin = above.binReaching(static_cast<std::uint64_t>(static_cast<double>(count) * 0.8));
    return bin < 0 ? fallback : Histogram::centre(bin);
}

ZR_MULTIVERSION static void moveToAnchor(float* depth, std::size_t size, const Anchor& anchor)
{
    const auto [floor, span, level, target, fit, thickness] = anchor;
    for (std::size_t i = 0; i < size; ++i) {
        const float d = depth[i];
        const float height = (d - floor) / span;
        const float above = height > 0.0f ? height : 0.0f;
        const float weight = fit * (above < 1.0f ? above : 1.0f);
        const float moved = d + weight * ((d - level) * thickness + target - d);
        const float notBelow = moved < 0.0f ? 0.0f : moved;
        depth[i] = notBelow > 1.0f ? 1.0f : notBelow;
    }
}

static bool anchorApplies(const ZRParams& p)
{
    const bool finite = std::isfinite(p.objectFit) && std::isfinite(p.objectThickness) &&
                        !std::isnan(p.manualAnchorDepth) &&
                        (p.floorAuto || !std::isnan(p.backgroundFloor));
    return p.resolveDistance && p.sourceIsStarless && p.manualAnchorOn && p.objectFit > 0.0f &&
           finite;
}

void applyAnchor(const Image& cues, const ZRParams& p, Image& out)
{
    if (!cues.usable())
        return;
    out = cues;
    if (!anchorApplies(p))
        return;
    const double target = std::clamp(static_cast<double>(p.manualAnchorDepth), 0.0, 1.0);
    const double floor = backgroundFloor(out, p);
    const double level = objectLevel(out, floor, target);
    const Anchor anchor{static_cast<float>(floor),
                        static_cast<float>(std::max(0.08, level - floor)),
                        static_cast<float>(level),
                        static_cast<float>(target),
                        p.objectFit,
                        p.objectThickness};
    moveToAnchor(out.plane(0), out.pixelCount(), anchor);
}

} // namespace zre
