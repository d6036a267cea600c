#include "engine/depth/color_depth.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/depth/color_depth_rows.h"
#include "engine/depth/depth_shaping.h"
#include "engine/image/blur.h"
#include "engine/image/multiversion.h"

namespace zre {

namespace {

constexpr float kExactTolerance = 0.0001f;
constexpr std::size_t kStrip = 1024; // samples that stay in the first-level cache
constexpr std::size_t kReportEvery = 256 * kStrip;

struct Brush
{
    float r, g, b;
    float tolerance;
    float depth;  // after the gamma
    float weight; // at the colour itself
};

} // namespace

static std::vector<Brush> enabledBrushes(const ZRParams& p)
{
    std::vector<ColorDepthRow> rows;
    parseColorDepthRows(p.colorDepthEntries, rows);
    const bool raised = std::isfinite(p.colorDepthGamma) && p.colorDepthGamma != 1.0f;
    std::vector<Brush> brushes;
    for (const ColorDepthRow& row : rows) {
        const float depth = raised ? std::pow(row.depth, p.colorDepthGamma) : row.depth;
        if (row.enabled && std::isfinite(depth))
            brushes.push_back({row.r, row.g, row.b, row.tolerance, depth, p.colorDepthWeight});
    }
    return brushes;
}

/// Writes the weight of the brush at each pixel; a pixel with a NaN gets 0.
ZR_MULTIVERSION static void brushWeights(const Brush& brush, const float* __restrict r,
                                         const float* __restrict g, const float* __restrict b,
                                         float* __restrict weights, std::size_t size)
{
    const auto [red, green, blue, tolerance, depth, weight] = brush;
    const bool exact = tolerance <= kExactTolerance;
    const float reach = exact ? 1.0f : tolerance;
    for (std::size_t i = 0; i < size; ++i) {
        const float dr = r[i] - red;
        const float dg = g[i] - green;
        const float db = b[i] - blue;
        const float distance = std::sqrt(dr * dr + dg * dg + db * db);
        const float t = 1.0f - distance / reach;
        const float soft = (3.0f - 2.0f * t) * t * t * weight;
        const float inside = distance < reach ? soft : 0.0f;
        const float at = distance <= kExactTolerance ? weight : 0.0f;
        weights[i] = exact ? at : inside;
    }
}

ZR_MULTIVERSION static void applyBrush(const float* __restrict weights, float brushDepth,
                                       float* __restrict depth, float* __restrict coverage,
                                       std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        const float w = weights[i];
        depth[i] = (1.0f - w) * depth[i] + w * brushDepth;
        coverage[i] = coverage[i] + w - w * coverage[i];
    }
}

/// `coverage` is null when nobody asks which pixels were painted.
static void paint(const Image& colors, const std::vector<Brush>& brushes, Image& depth,
                  float* coverage, const Progress& progress)
{
    const std::size_t n = depth.pixelCount();
    std::array<float, kStrip> weights{};
    std::array<float, kStrip> unused{};
    for (std::size_t i = 0; i < n; i += kStrip) {
        if (progress && i % kReportEvery == 0)
            progress(0.85 + 0.05 * static_cast<double>(i) / static_cast<double>(n));
        const std::size_t size = std::min(kStrip, n - i);
        for (const Brush& brush : brushes) {
            brushWeights(brush, colors.plane(0) + i, colors.plane(1) + i, colors.plane(2) + i,
                         weights.data(), size);
            applyBrush(weights.data(), brush.depth, depth.plane(0) + i,
                       coverage ? coverage + i : unused.data(), size);
        }
    }
}

/// depth = (1 - c) * outside + c * inside; `depth` may be either of them.
static void mixByCoverage(const Image& coverage, const Image& outside, const Image& inside,
                          Image& depth)
{
    for (std::size_t i = 0; i < depth.data.size(); ++i) {
        const float c = coverage.data[i];
        depth.data[i] = (1.0f - c) * outside.data[i] + c * inside.data[i];
    }
}

void paintColorRows(const Image& colors, const Image& lightness, const ZRParams& p, Image& depth,
                    const Progress& progress, const StageText& stage)
{
    if (!p.colorDepthEnabled || !(p.colorDepthWeight > 0.0f) ||
        !std::isfinite(p.colorDepthWeight) || colors.channels < 3)
        return;
    const std::vector<Brush> brushes = enabledBrushes(p);
    if (brushes.empty())
        return;
    if (stage)
        stage("Color depth");
    const bool alongEdges = smoothsAlongEdges(p.colorDepthSmoothness, p.edgePreservation);
    const bool gaussian = smooths(p.colorDepthGaussian);
    Image before;
    Image coverage;
    if (alongEdges)
        before = depth;
    if (alongEdges || gaussian)
        coverage = Image(depth.width, depth.height, 0);
    paint(colors, brushes, depth, coverage.usable() ? coverage.plane(0) : nullptr, progress);
    if (alongEdges) {
        smoothDepth(lightness, depth, p.colorDepthSmoothness, p.edgePreservation,
                    subRange(progress, 0.9, 0.95));
        mixByCoverage(coverage, before, depth, depth);
    }
    if (gaussian) {
        Image blurred = depth;
        localMean(blurred, static_cast<double>(p.colorDepthGaussian), {});
        mixByCoverage(coverage, depth, blurred, depth);
    }
}

} // namespace zre
