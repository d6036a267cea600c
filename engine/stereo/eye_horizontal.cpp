#include <algorithm>

#include "engine/stereo/eye.h"
#include "engine/stereo/warp.h"

namespace zre {

namespace {

constexpr int kHole = -1;
constexpr float kNothing = -1e30f;

/// For each column of one output row: the source column that landed there, and its depth.
struct LandingRow
{
    std::vector<int> source;
    std::vector<float> z;
};

void land(const Warp& warp, const float* depth, int width, LandingRow& row)
{
    std::fill(row.source.begin(), row.source.end(), kHole);
    std::fill(row.z.begin(), row.z.end(), kNothing);
    for (int x = 0; x < width; ++x) {
        const float d = finiteDepth(warp, depth[x]);
        const double cell = std::floor(x + horizontalShift(warp, d) + 0.5);
        if (!(cell >= 0.0 && cell < width))
            continue;
        const auto target = static_cast<std::size_t>(cell);
        if (d > row.z[target]) {
            row.source[target] = x;
            row.z[target] = d;
        }
    }
}

/// Lets the holes of a row show the farther of the pixels beside them, the left one when equal.
void fillHoles(int width, LandingRow& row)
{
    const auto first = row.source.begin();
    const auto end = first + width;
    for (auto i = std::find(first, end, kHole); i != end; i = std::find(i, end, kHole)) {
        const auto j = std::find_if(i, end, [](int source) { return source != kHole; });
        const auto left = i - first - 1;
        const auto right = j - first;
        if (left < 0 && j == end)
            return;
        const bool takeLeft = left >= 0 && (j == end || row.z[static_cast<std::size_t>(left)] <=
                                                            row.z[static_cast<std::size_t>(right)]);
        const auto chosen = static_cast<std::size_t>(takeLeft ? left : right);
        std::fill(i, j, row.source[chosen]);
        std::fill(row.z.begin() + (i - first), row.z.begin() + right, row.z[chosen]);
        i = j;
    }
}

} // namespace

void renderEyeHorizontal(const Image& src, const Image& depth, Image& out, double parallax,
                         double convergence, double offsetX, double maxDisparity,
                         const Progress& progress, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const int width = src.width;
    const Warp warp = settled({.parallax = parallax,
                               .convergence = convergence,
                               .offsetX = offsetX,
                               .maxDisparity = maxDisparity},
                              width, src.height);
    const auto columns = static_cast<std::size_t>(width);
    if (outDepth)
        shapeDepth(*outDepth, width, src.height);
    LandingRow row{std::vector<int>(columns), std::vector<float>(columns)};
    for (int y = 0; y < src.height; ++y) {
        if (progress && y % 64 == 0)
            progress(static_cast<double>(y) / src.height);
        const std::size_t offset = static_cast<std::size_t>(y) * columns;
        land(warp, depth.plane(0) + offset, width, row);
        fillHoles(width, row);
        for (int c = 0; c < src.channels; ++c) {
            const float* const from = src.plane(c) + offset;
            float* const to = out.plane(c) + offset;
            for (std::size_t x = 0; x < columns; ++x)
                to[x] = row.source[x] == kHole ? 0.0f : from[row.source[x]];
        }
        if (outDepth)
            for (std::size_t x = 0; x < columns; ++x)
                outDepth->plane(0)[offset + x] = row.source[x] == kHole ? -1.0f : row.z[x];
    }
}

} // namespace zre
