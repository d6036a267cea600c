#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/image/multiversion.h"
#include "engine/stereo/eye_window.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/steady_range.h"
#include "engine/stereo/warp.h"

namespace zre {

namespace {

constexpr int kHole = -1;
constexpr float kNothing = -1e30f;

/// The scratch rows of one call, a cell longer than the image: pixels that leave the row land in
/// that last cell, so that the scatter needs no test.
struct LandingRow
{
    explicit LandingRow(std::size_t width)
        : source(width + 1)
        , z(width + 1)
    {
    }

    std::vector<int> source; ///< source column shown by each output cell
    std::vector<float> z;    ///< its depth
};

void landPixels(const float* depth, Ints pixels, int* source, float* z)
{
    storeWhere(landFour(depth, z), pixels, source);
}

void landPixel(const Warp& warp, float depth, int x, int width, LandingRow& row)
{
    const float d = finiteDepth(warp, depth);
    const double cell = x + horizontalShift(warp, d) + 0.5;
    // Not below zero, so that truncation rounds down.
    const auto target =
        static_cast<std::size_t>(cell >= 0.0 && cell < width ? cell : double(width));
    storeWhere(landOne(d, row.z[target]), x, row.source[target]);
}

/// The nearest pixel wins a cell, the first of equals. Nearly all blocks move as one.
ZR_MULTIVERSION void land(const Warp& warp, const float* depth, int width, LandingRow& row)
{
    std::fill(row.source.begin(), row.source.end(), kHole);
    std::fill(row.z.begin(), row.z.end(), kNothing);
    SteadyRange steady;
    int x = 0;
    for (; x + kBlock <= width; x += kBlock) {
        const float last = depth[x + kBlock - 1];
        if (!steady.holds(last))
            steady = steadyAround(warp, last, width, 1);
        const int cell = x + steady.x;
        if (cell >= 0 && cell + kBlock <= width && holdsBlock(steady, depth + x)) {
            int* const source = row.source.data() + cell;
            float* const z = row.z.data() + cell;
            const Ints pixels = Ints{0, 1, 2, 3} + x;
            landPixels(depth + x, pixels, source, z);
            landPixels(depth + x + 4, pixels + 4, source + 4, z + 4);
        } else {
            for (int k = x; k < x + kBlock; ++k)
                landPixel(warp, depth[k], k, width, row);
        }
    }
    for (; x < width; ++x)
        landPixel(warp, depth[x], x, width, row);
}

int firstHole(const int* source, int from, int width)
{
    int x = from;
    while (x + kBlock <= width && !anyNegative(source + x))
        x += kBlock;
    while (x < width && source[x] != kHole)
        ++x;
    return x;
}

/// Lets the holes of a row show the farther of the pixels beside them, the left one when equal.
void fillHoles(int width, int* source, float* z)
{
    for (int i = firstHole(source, 0, width); i < width;) {
        int j = i;
        while (j < width && source[j] == kHole)
            ++j;
        if (i == 0 && j == width)
            return;
        const int chosen = i > 0 && (j == width || z[i - 1] <= z[j]) ? i - 1 : j;
        std::fill(source + i, source + j, source[chosen]);
        std::fill(z + i, z + j, z[chosen]);
        i = firstHole(source, j, width);
    }
}

/// Copies a row of every channel from its source columns; the row has no hole.
ZR_MULTIVERSION void copyRow(const Image& src, std::size_t offset, const int* source, Image& out)
{
    const std::size_t planeSize = src.pixelCount();
    const float* const from = src.data.data() + offset;
    float* const to = out.data.data() + offset;
    const std::size_t end = planeSize * static_cast<std::size_t>(src.channels);
    int x = 0;
    for (; x + kBlock <= src.width; x += kBlock) {
        if (straight(source + x)) {
            for (std::size_t plane = 0; plane < end; plane += planeSize)
                std::memcpy(to + plane + x, from + plane + source[x], kBlock * sizeof(float));
        } else {
            for (std::size_t plane = 0; plane < end; plane += planeSize)
                for (int k = x; k < x + kBlock; ++k)
                    to[plane + static_cast<std::size_t>(k)] =
                        from[plane + static_cast<std::size_t>(source[k])];
        }
    }
    for (; x < src.width; ++x)
        for (std::size_t plane = 0; plane < end; plane += planeSize)
            to[plane + static_cast<std::size_t>(x)] =
                from[plane + static_cast<std::size_t>(source[x])];
}

} // namespace

void renderWindowHorizontal(const Image& src, const Image& depth, Image& out, double parallax,
                            double convergence, double offsetX, double maxDisparity,
                            const EyeWindow& window, const Progress& progress, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const int width = src.width;
    const Warp warp = settled({.parallax = parallax,
                               .convergence = convergence,
                               .offsetX = offsetX,
                               .maxDisparity = maxDisparity},
                              width, src.height);
    if (outDepth)
        shapeDepth(*outDepth, width, src.height);
    const auto columns = static_cast<std::size_t>(width);
    LandingRow row(columns);
    const EyeWindow part = boundTo(src, window);
    for (int y = part.top; y < part.bottom; ++y) {
        if (progress && y % 64 == 0)
            progress(static_cast<double>(y) / src.height);
        const std::size_t offset = static_cast<std::size_t>(y) * columns;
        land(warp, depth.plane(0) + offset, width, row);
        fillHoles(width, row.source.data(), row.z.data());
        const bool empty = row.source.front() == kHole;
        if (empty)
            for (int c = 0; c < src.channels; ++c)
                std::fill_n(out.plane(c) + offset, columns, 0.0f);
        else
            copyRow(src, offset, row.source.data(), out);
        if (outDepth && empty)
            std::fill_n(outDepth->plane(0) + offset, columns, -1.0f);
        else if (outDepth)
            std::copy_n(row.z.begin(), columns, outDepth->plane(0) + offset);
    }
}

void renderEyeHorizontal(const Image& src, const Image& depth, Image& out, double parallax,
                         double convergence, double offsetX, double maxDisparity,
                         const Progress& progress, Image* outDepth)
{
    renderWindowHorizontal(src, depth, out, parallax, convergence, offsetX, maxDisparity,
                           {0, 0, src.width, src.height}, progress, outDepth);
}

} // namespace zre
