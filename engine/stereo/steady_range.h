#pragma once

#include "engine/stereo/lanes.h"
#include "engine/stereo/warp.h"

namespace zre {

/// A range of depths that all move by the same whole numbers of columns and rows, wherever they
/// stand; empty as it is made.
struct SteadyRange
{
    float low = 1.0f;
    float high = 0.0f;
    int x = 0;
    int y = 0;

    bool holds(float depth) const { return depth >= low && depth <= high; }
};

/// The range about `depth` under a warp without zoom; empty where a pixel moves by more than the
/// image, or so near to half a pixel that its place decides.
SteadyRange steadyAround(const Warp& warp, float depth, int width, int height);

inline Ints heldBy(const SteadyRange& range, Floats depths)
{
    return (depths >= range.low) & (depths <= range.high);
}

/// True when the range holds all of `kBlock` depths.
inline bool holdsBlock(const SteadyRange& range, const float* depth)
{
    return allSet(heldBy(range, loadFloats(depth)) & heldBy(range, loadFloats(depth + 4)));
}

/// True when the two ranges hold all of them between them.
inline bool holdBlock(const SteadyRange& one, const SteadyRange& other, const float* depth)
{
    const Floats a = loadFloats(depth);
    const Floats b = loadFloats(depth + 4);
    return allSet((heldBy(one, a) | heldBy(other, a)) & (heldBy(one, b) | heldBy(other, b)));
}

} // namespace zre
