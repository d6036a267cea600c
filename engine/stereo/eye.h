#pragma once

#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/stars/star.h"

namespace zre {

/// Columns from `left` to before `right` and rows from `top` to before `bottom` of a picture.
struct EyeWindow
{
    int left;
    int top;
    int right;
    int bottom;
};

/// Warps `src` into one eye: every pixel moves in proportion to its depth, near pixels win, and the
/// holes behind them fill from the farther side.
///
/// Shape:   `depth` has the size of `src`; `out` already has its size and channels and every pixel
///          of it is written. `outDepth` may be null; else it becomes one channel, -1 at holes
///          nothing reached.
/// Units:   `parallax` and `maxDisparity` in pixels of total disparity (`maxDisparity` at most 0:
///          no clamp); `offsetX` +1 is the left eye, -1 the right; `zoom` the radial parallax of
///          what stands in front of `convergence`, about (`centerX`, `centerY`), where a value
///          below 0 means the middle.
/// Errors:  none; with a non-finite argument the pixels it would move stay where they are.
/// A purely horizontal warp without `splat` runs in `renderEyeHorizontal`, anything else in
/// `renderEye2D`.
void renderEye(const Image& src, const Image& depth, Image& out, double parallax,
               double convergence, double offsetX, double offsetY, double maxDisparity, double zoom,
               double centerX, double centerY, bool splat, Image* outDepth);

/// As `renderEye`, for a caller that looks at a window of the picture alone: the pixels of
/// `window`, which is bound to the image, come out the same; of any other, in `out` and `outDepth`,
/// it is unspecified whether it is written.
void renderEyeWindow(const Image& src, const Image& depth, Image& out, double parallax,
                     double convergence, double offsetX, double offsetY, double maxDisparity,
                     double zoom, double centerX, double centerY, bool splat,
                     const EyeWindow& window, Image* outDepth);

/// The horizontal warp by whole pixels, row by row, with two scratch rows.
void renderEyeHorizontal(const Image& src, const Image& depth, Image& out, double parallax,
                         double convergence, double offsetX, double maxDisparity,
                         const Progress& progress, Image* outDepth);

/// The general warp: scatter by nearest cell (with `splat` also into the three cells beside it,
/// while empty), then a bilinear gather at the source position that lands on the cell's centre,
/// then hole fill along the motion. With a zoom or `splat`, an image of 2^31 pixels and more,
/// nearly, is shown as it is.
void renderEye2D(const Image& src, const Image& depth, Image& out, double parallax,
                 double convergence, double offsetX, double offsetY, double maxDisparity,
                 double zoom, double centerX, double centerY, bool splat, Image* outDepth);

/// Warps a stars layer by its own depth and adds it to `out`.
///
/// With `sceneDepth` of `out`'s size and `occlusion` above 0, a star farther than `occlusion` goes
/// behind scene pixels nearer than itself. A one-channel layer lights every plane.
void compositeStarsImage(const Image& stars, const Image& starDepth, Image& out, double parallax,
                         double convergence, double offsetX, double offsetY, double maxDisparity,
                         double zoom, double centerX, double centerY, const Image* sceneDepth,
                         float occlusion);

/// Adds the star layer to a rendered view: the stars image where it and its depth are given and
/// usable, else the sprites of the list.
void compositeStarLayer(Image& out, double parallax, double convergence, double offsetX,
                        double offsetY, double maxDisparity, const std::vector<Star>* stars,
                        const Image* starsImage, const Image* starsDepth, const Image* sceneDepth,
                        float occlusion);

/// Both eyes of `src`, stars added and graded. The left eye is always `left`: `swapEyes` acts where
/// the pair is used. Convergence is the median depth with `autoConvergence`.
void renderEyes(const Image& src, const Image& depth, const ZRParams& p, Image& left, Image& right,
                const std::vector<Star>* stars, const Progress& progress, const Image* starsImage,
                const Image* starsDepth);

} // namespace zre
