#pragma once

#include "engine/image/image.h"
#include "engine/params/depth_inputs.h"
#include "engine/params/params.h"

namespace zre {

/// Mixes the image cues into a depth map: luminance, structure, narrowband balance and the learned
/// cue, smoothed along edges and normalised; then colour rows, the floated star mask and the
/// external map.
///
/// Shape:   `out` becomes one channel of the source's size, 0 far to 1 near.
/// Errors:  none; an unusable optional input drops its stage, a non-finite parameter leaves its
/// stage out. `stage` gets "Smoothing", "Color depth" and "External depth map" as each begins.
void buildDepthCues(const Image& source, const ZRParams& p, const DepthInputs& in, Image& out,
                    const Progress& progress, const StageText& stage);

/// Moves the object to its known depth: the 80th percentile of what lies above the background floor
/// lands on `manualAnchorDepth` with its spread scaled by `objectThickness`, while the floor stays.
/// A copy of `cues` unless `resolveDistance`, `sourceIsStarless` and `manualAnchorOn` hold and
/// `objectFit` is above 0.
void applyAnchor(const Image& cues, const ZRParams& p, Image& out);

/// Blends the depth editor's result over `anchored` by `depthModelMode` and `depthModelBlend`.
void compositeDepthModel(const Image& anchored, const ZRParams& p, const DepthInputs& in,
                         Image& out);

/// The three levels in their fixed order, then `progress(1.0)`.
void buildDepthMap(const Image& source, const ZRParams& p, const DepthInputs& in, Image& out,
                   const Progress& progress);

} // namespace zre
