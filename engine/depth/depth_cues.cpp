#include "engine/depth/depth_map.h"

#include <algorithm>
#include <cmath>

#include "engine/depth/blend_map.h"
#include "engine/depth/color_depth.h"
#include "engine/depth/cue_mix.h"
#include "engine/depth/depth_shaping.h"
#include "engine/depth/nearest_rows.h"
#include "engine/image/blur.h"
#include "engine/image/histogram.h"
#include "engine/image/multiversion.h"
#include "engine/image/raster.h"

namespace zre {

static bool usable(const Image* image)
{
    return image && image->usable();
}

static void report(const Progress& progress, double fraction)
{
    if (progress)
        progress(fraction);
}

static double finiteOrZero(float weight)
{
    return std::isfinite(weight) ? static_cast<double>(weight) : 0.0;
}

/// The image whose cues are read: `source`, or the star-free image brought to its size.
static const Image& workingImage(const Image& source, const ZRParams& p, const DepthInputs& in,
                                 Image& resampled)
{
    const bool starFree = (p.starInputMode == 2 || p.starInputMode == 3) && usable(in.starless);
    if (!starFree)
        return source;
    if (in.starless->sameSize(source))
        return *in.starless;
    areaResample(*in.starless, source.width, source.height, resampled);
    return resampled;
}

/// Lightness guides every smoothing, where one blank pixel would spread over its neighbourhood.
ZR_MULTIVERSION static void blankToBlack(float* samples, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        samples[i] = samples[i] == samples[i] ? samples[i] : 0.0f;
}

static CueMix cueWeights(const Image& working, const Image& lightness, const ZRParams& p,
                         const DepthInputs& in)
{
    CueMix mix;
    mix.luminance = lightness.plane(0);
    mix.inverted = p.invertDepth;
    if (p.narrowbandEnabled && p.narrowbandWeight > 0.0f && working.channels >= 3) {
        mix.narrowbandWeight = finiteOrZero(p.narrowbandWeight);
        mix.nearPlane = working.plane(p.nearChannel >= 0 && p.nearChannel < 3 ? p.nearChannel : 0);
        mix.farPlane = working.plane(std::clamp(p.farChannel, 0, 2));
    }
    if (p.luminanceEnabled) {
        mix.luminanceWeight = finiteOrZero(p.luminanceWeight);
        mix.structureWeight = finiteOrZero(p.structureWeight);
        if (p.aiDepthWeight > 0.0f && usable(in.aiDepth) &&
            in.aiDepth->pixelCount() == working.pixelCount()) {
            mix.aiWeight = finiteOrZero(p.aiDepthWeight);
            mix.ai = in.aiDepth->plane(0);
        }
    }
    return mix;
}

ZR_MULTIVERSION static void absoluteDifference(float* __restrict blurred,
                                               const float* __restrict original, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        blurred[i] = std::fabs(original[i] - blurred[i]);
}

static Image structurePlane(const Image& lightness, float scale)
{
    Image structure = lightness;
    gaussianBlur(structure, scale, 0.01f, {});
    absoluteDifference(structure.plane(0), lightness.plane(0), lightness.pixelCount());
    return structure;
}

/// The factor that brings the 99.5th percentile of the structure to 1.
static double structureScale(const Image& structure)
{
    const std::size_t n = structure.pixelCount();
    const Histogram histogram = histogramOf(structure.plane(0), n);
    const auto target = static_cast<std::uint64_t>(static_cast<double>(n) * 0.995);
    const double level = Histogram::centre(histogram.binReaching(target));
    return level > 1e-6 ? 1.0 / level : 0.0;
}

/// `mix` lacks only its structure plane; the depth is made in the place of that plane.
static Image mixedDepth(CueMix mix, const Image& lightness, float scale)
{
    Image depth;
    if (mix.structureWeight != 0.0) {
        depth = structurePlane(lightness, scale);
        mix.structureScale = structureScale(depth);
        mix.structure = depth.plane(0);
    } else {
        depth = Image(lightness.width, lightness.height, 0);
    }
    mixCues(mix, depth.plane(0), depth.pixelCount());
    return depth;
}

static void floatRow(float* __restrict depth, const float* __restrict mask, std::size_t size,
                     float floatation, float plane)
{
    for (std::size_t i = 0; i < size; ++i) {
        const float a = mask[i] * floatation;
        const float floated = a * plane + (1.0f - a) * depth[i];
        const bool applies = (a > 0.0f) & (floated - floated == 0.0f);
        depth[i] = applies ? floated : depth[i];
    }
}

/// Pulls the masked stars toward their plane.
static void floatStarMask(const ZRParams& p, const DepthInputs& in, Image& depth)
{
    if (p.starInputMode != 1 || !(p.starFloatation > 0.0f) || p.starMaskPerStar ||
        !usable(in.starMask))
        return;
    const std::size_t width = static_cast<std::size_t>(depth.width);
    NearestRows rows(*in.starMask, depth.width, depth.height);
    for (int y = 0; y < depth.height; ++y)
        floatRow(depth.plane(0) + static_cast<std::size_t>(y) * width, rows.row(y), width,
                 p.starFloatation, p.starPlane);
}

/// The external map at the depth's size, smoothed and with its gamma. A sample without a value
/// takes the depth there, so that the smoothing does not spread it.
static Image shapedMap(const Image& map, const Image& lightness, const Image& depth,
                       const ZRParams& p)
{
    Image plane(depth.width, depth.height, 0);
    const std::size_t width = static_cast<std::size_t>(depth.width);
    NearestRows rows(map, depth.width, depth.height);
    for (int y = 0; y < depth.height; ++y) {
        const float* from = rows.row(y);
        const std::size_t start = static_cast<std::size_t>(y) * width;
        for (std::size_t x = 0; x < width; ++x)
            plane.data[start + x] = std::isfinite(from[x]) ? from[x] : depth.data[start + x];
    }
    smoothDepth(lightness, plane, p.paintedSmoothness, p.edgePreservation, {});
    if (raises(p.paintedGamma)) {
        for (float& v : plane.data)
            v = std::clamp(v, 0.0f, 1.0f);
        raiseDepth(plane, p.paintedGamma);
    }
    return plane;
}

static void blendExternalMap(const Image& lightness, const ZRParams& p, const DepthInputs& in,
                             Image& depth, const StageText& stage)
{
    if (!p.depthMapEnabled || !(p.depthMapBlend > 0.0f) || !usable(in.externalDepth))
        return;
    if (stage)
        stage("External depth map");
    if (smoothsAlongEdges(p.paintedSmoothness, p.edgePreservation) || raises(p.paintedGamma))
        blendMap(depth, shapedMap(*in.externalDepth, lightness, depth, p), p.depthMapMode,
                 p.depthMapBlend);
    else
        blendMap(depth, *in.externalDepth, p.depthMapMode, p.depthMapBlend);
}

void buildDepthCues(const Image& source, const ZRParams& p, const DepthInputs& in, Image& out,
                    const Progress& progress, const StageText& stage)
{
    if (!source.usable())
        return;
    Image resampled;
    const Image& working = workingImage(source, p, in, resampled);
    report(progress, 0.05);
    Image lightness;
    getLightness(working, lightness);
    blankToBlack(lightness.plane(0), lightness.pixelCount());

    Image depth;
    const CueMix mix = cueWeights(working, lightness, p, in);
    if (mix.total() > 0.0) {
        depth = mixedDepth(mix, lightness, p.structureScale);
        if (stage && smoothsAlongEdges(p.smoothness, p.edgePreservation))
            stage("Smoothing");
        smoothDepth(lightness, depth, p.smoothness, p.edgePreservation,
                    subRange(progress, 0.1, 0.8));
        report(progress, 0.8);
        normaliseDepth(depth);
        raiseDepth(depth, p.depthGamma);
    } else {
        depth = Image(working.width, working.height, 0);
    }
    report(progress, 0.85);
    paintColorRows(working, lightness, p, depth, progress, stage);
    floatStarMask(p, in, depth);
    blendExternalMap(lightness, p, in, depth, stage);
    report(progress, 0.95);
    out = std::move(depth);
}

} // namespace zre
