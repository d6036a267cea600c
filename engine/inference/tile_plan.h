#pragma once

#include <vector>

namespace zre {

/// A piece of one axis of an image: where it begins and how many pixels it has.
struct TileSpan
{
    int origin = 0;
    int size = 0;
    bool operator==(const TileSpan&) const = default;
};

/// Divides `length` pixels into pieces of `tile` that share `overlap` with their neighbours. No
/// piece is shifted back to stay whole: the last one ends with the axis. A tile below 1 counts as
/// 1; the pieces advance by at least one pixel. Empty for a length below 1.
std::vector<TileSpan> planTiles(int length, int tile, int overlap);

/// The weight of each pixel of a piece of `size` pixels: up from 1/(overlap + 1) at its first pixel
/// to 1 and down again to its last, so that two pieces fade into each other across what they share.
/// All 1 for a single pixel or without overlap. Empty for a size below 1.
std::vector<float> tileWeights(int size, int overlap);

} // namespace zre
