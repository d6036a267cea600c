#include "engine/depth/depth_map.h"

#include <utility>

#include "engine/depth/blend_map.h"

namespace zre {

void compositeDepthModel(const Image& anchored, const ZRParams& p, const DepthInputs& in,
                         Image& out)
{
    if (!anchored.usable())
        return;
    out = anchored;
    if (p.depthModelEnabled && in.depthModel)
        blendMap(out, *in.depthModel, p.depthModelMode, p.depthModelBlend);
}

void buildDepthMap(const Image& source, const ZRParams& p, const DepthInputs& in, Image& out,
                   const Progress& progress)
{
    if (!source.usable())
        return;
    // The levels work in place here; `out` may be one of the inputs until the last moment.
    Image depth;
    buildDepthCues(source, p, in, depth, progress, {});
    applyAnchor(depth, p, depth);
    compositeDepthModel(depth, p, in, depth);
    out = std::move(depth);
    if (progress)
        progress(1.0);
}

} // namespace zre
