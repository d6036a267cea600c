#pragma once

#include <vector>

#include "engine/flight/flyby_camera.h"
#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/stars/star.h"

namespace zre {

/// What drawing a frame needs beside its arguments. Whoever keeps it from frame to frame saves the
/// fresh memory, which takes as long as the drawing; it serves one thread at a time.
struct FlybyScratch
{
    Image eye;
    Image displacedDepth;
};

/// Draws one frame of a flyby: a full eye with the camera's wiggle and warp, the stars on it, and
/// the camera's window cut out of that.
///
/// Shape:   `depth` has the size of `image`; `out` takes `outW` by `outH` pixels (below 1: the size
///          of the window, rounded) and the channels of `image`.
/// Units:   `offsetX` in eye units, +1 left and -1 right, is added to the wiggle; `convergence` is
///          the depth that stays still.
/// Stars:   `starsImage` with `starsDepth` where both are given and not empty, else `stars`; each
///          may be null.
/// Of the eye only what the window shows is drawn, and all of it where a turned window reaches over
/// an edge; the frame is the same. Without `scratch` it has memory of its own.
/// `ongoingWiggle` lets frames that inherit their amplitude swing by `wiggleAmplitude`; otherwise
/// they stand still.
void renderFlybyFrame(const Image& image, const Image& depth, const FlybyCamera& cam,
                      bool ongoingWiggle, double convergence, const ZRParams& p, Image& out,
                      const std::vector<Star>* stars, const Image* starsImage,
                      const Image* starsDepth, double offsetX, int outW, int outH,
                      FlybyScratch* scratch = nullptr);

} // namespace zre
