#pragma once

#include <vector>

#include "engine/stereo/warp.h"

namespace zre {

/// The least and the greatest depth of an image; one that is no finite number counts as the
/// convergence.
struct DepthRange
{
    double low;
    double high;
};

DepthRange depthRange(const Warp& warp, const Image& depth);

/// The most rows by which `warp` moves a pixel up or down, splats included.
int rowReach(const Warp& warp, const DepthRange& depths, int height);

/// Rows from `first` to `last`, from -1 (above the image) to its height (below).
struct RowSpan
{
    int first;
    int last;
};

/// Where the rows of the source may land, row by row: about the centre of a zoom far nearer to
/// themselves than `rowReach` says.
struct LandingRows
{
    std::vector<RowSpan> spans;  ///< of each source row, splats included
    std::vector<int> firstLater; ///< first row that a source row from this one on may land on
    int most = 0;                ///< rows that are in work at the same time
};

LandingRows landingRows(const Warp& warp, const DepthRange& depths, int height);

} // namespace zre
