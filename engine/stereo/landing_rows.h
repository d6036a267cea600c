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

/// Rows from `first` to `last`.
struct RowSpan
{
    int first;
    int last;
};

/// Columns from `first` to before `end`.
struct Columns
{
    int first;
    int end;
};

/// Where the rows of the source may land among the rows from `top` to before `bottom`, row by row:
/// about the centre of a zoom far nearer to themselves than `rowReach` says. Row `top` - 1 stands
/// for all above, `bottom` for all below.
struct LandingRows
{
    std::vector<RowSpan> spans;  ///< of each source row, splats included
    std::vector<int> firstLater; ///< first row that a source row from this one on may land on
    int most = 0;                ///< rows that are in work at the same time
};

LandingRows landingRows(const Warp& warp, const DepthRange& depths, int height, int top,
                        int bottom);

/// The columns of the source from which pixels may land in columns `left` to before `right`.
Columns landingColumns(const Warp& warp, const DepthRange& depths, int width, int left, int right);

} // namespace zre
