#pragma once

#include <cmath>
#include <limits>

#include "engine/image/image.h"
#include "engine/image/multiversion.h"

namespace zre {

/// Where an eye stands and how far the pixels move for it; see `renderEye` for the meanings.
struct Warp
{
    double parallax = 0.0;
    double convergence = 0.0;
    double offsetX = 0.0;
    double offsetY = 0.0;
    double maxDisparity = 0.0;
    double zoom = 0.0;
    double centerX = -1.0;
    double centerY = -1.0;
};

/// `warp` with every value finite and the centre resolved for an image of that size. A value that
/// is no number leaves out what it belongs to: the parallax, the zoom, the clamp, or with the
/// convergence all motion.
Warp settled(Warp warp, int width, int height);

/// True when a pixel's displacement depends on its depth alone, and linearly.
inline bool onlyShifts(const Warp& warp)
{
    return warp.zoom == 0.0 && !(warp.maxDisparity > 0.0);
}

struct Displacement
{
    double x;
    double y;
};

/// The growth of the zoom per pixel of distance from its centre: zero behind the convergence plane.
inline double zoomGrowth(const Warp& warp, double depth)
{
    const double nearness = depth - warp.convergence;
    return (nearness > 0.0 ? nearness : 0.0) * warp.zoom;
}

/// How far a pixel of that depth moves in a purely horizontal warp, in pixels.
inline double horizontalShift(const Warp& warp, double depth)
{
    const double shift = (depth - warp.convergence) * warp.offsetX * 0.5 * warp.parallax;
    if (!(warp.maxDisparity > 0.0))
        return shift;
    const double limit = warp.maxDisparity * 0.5;
    const double raised = shift < -limit ? -limit : shift;
    return raised > limit ? limit : raised;
}

/// How far the pixel at (`x`, `y`) moves, in pixels.
inline Displacement displacement(const Warp& warp, double x, double y, double depth)
{
    const double nearness = depth - warp.convergence;
    Displacement moved{warp.offsetX * 0.5 * warp.parallax * nearness,
                       warp.offsetY * 0.5 * warp.parallax * nearness};
    if (warp.zoom != 0.0) {
        const double growth = zoomGrowth(warp, depth);
        moved.x += (x - warp.centerX) * growth;
        moved.y += (y - warp.centerY) * growth;
    }
    if (warp.maxDisparity > 0.0) {
        const double limit = warp.maxDisparity * 0.5;
        const double length = std::sqrt(moved.x * moved.x + moved.y * moved.y);
        if (length > limit) {
            moved.x *= limit / length;
            moved.y *= limit / length;
        }
    }
    return moved;
}

/// `displacement` for a loop without a branch, in which it is known whether the clamp applies; a
/// zoom of zero adds nothing.
ZR_KERNEL_STEP Displacement zoomedDisplacement(const Warp& warp, bool clamped, double x, double y,
                                               double depth)
{
    const double nearness = depth - warp.convergence;
    const double growth = zoomGrowth(warp, depth);
    Displacement moved{warp.offsetX * 0.5 * warp.parallax * nearness + (x - warp.centerX) * growth,
                       warp.offsetY * 0.5 * warp.parallax * nearness + (y - warp.centerY) * growth};
    if (!clamped)
        return moved;
    const double limit =
        warp.maxDisparity > 0.0 ? warp.maxDisparity * 0.5 : std::numeric_limits<double>::infinity();
    const double length = std::sqrt(moved.x * moved.x + moved.y * moved.y);
    const double shortening = length > limit ? limit / length : 1.0;
    return {moved.x * shortening, moved.y * shortening};
}

/// A depth that is no finite number stands in the convergence plane, so that its pixel stays.
inline float finiteDepth(const Warp& warp, float depth)
{
    return std::isfinite(depth) ? depth : static_cast<float>(warp.convergence);
}

/// True when `src` can be warped by `depth` into `out`.
bool warpable(const Image& src, const Image& depth, const Image& out);

/// Gives `img` one channel of that size; what it holds is unspecified.
void shapeDepth(Image& img, int width, int height);

/// Makes `eye` ready for a warp of `src`, which writes every pixel: what it held stays where the
/// memory fits. With a depth that allows no warp it becomes a copy.
void shapeEye(const Image& src, const Image& depth, Image& eye);

} // namespace zre
