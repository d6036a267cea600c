#pragma once

#include <cstddef>
#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace zre {

/// The sprite samples under a run of frame pixels along one axis: frame pixel `first + i` falls
/// between samples `at[i]` and `next[i]`, the latter with weight `share[i]`. Room of the vectors
/// beyond `count` is scratch.
struct SpriteTaps
{
    std::size_t first = 0;
    std::size_t count = 0;
    std::vector<int> at;
    std::vector<int> next;
    std::vector<float> share;
    bool even = false; ///< neighbours in the frame are neighbours in the sprite, at one share
};

/// What of the frame may hide a sprite: samples of `depth` (null: none) above `horizon`.
struct SpriteHiding
{
    const Image* depth = nullptr;
    float horizon = 0.0f;
};

/// Adds sprites to a frame; holds the scratch rows that all of them share.
class SpriteBlend
{
public:
    /// `star` has a whole sprite, and the taps lie within it and within `frame`. The places
    /// `wanted` are brought near meanwhile: a few with each row, since a processor drops what it
    /// is asked for all at once.
    void add(const Star& star, const SpriteTaps& columns, const SpriteTaps& rows, Image& frame,
             const SpriteHiding& hiding, const std::vector<const float*>& wanted);

private:
    std::vector<float> m_scratch;
};

} // namespace zre
