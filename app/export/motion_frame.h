#pragma once

#include <vector>

#include <QSize>

#include "engine/flight/flyby_camera.h"
#include "engine/flight/flyby_frame.h"
#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/stars/star.h"

/// All that the frames of a parallax motion or a flyby are made of. The images and stars are not
/// owned and stay as they are while frames are drawn, by several threads at once.
struct MotionInputs
{
    const zre::Image* working = nullptr;
    const zre::Image* depth = nullptr;
    const std::vector<zre::Star>* stars = nullptr; ///< null for none
    zre::ZRParams params;
    double convergence = 0.5;
    bool flyby = false;                    ///< else the parallax motion
    std::vector<zre::FlybyCamera> cameras; ///< of the flyby, one a frame
    bool ongoingWiggle = true;             ///< of the flyby

    int frames() const;
    /// Of one eye: the flyby's frame where it has one, else the whole picture.
    QSize frameSize() const;
};

/// Memory that drawing a frame takes beside the frame's own; kept from one to the next it saves the
/// first touch of fresh memory. It serves one thread at a time.
struct MotionScratch
{
    zre::FlybyScratch flyby;
    zre::Image left;
    zre::Image right;
};

enum class Eye
{
    Left,
    Right
};

/// Draws what one eye sees of a frame; the eyes are exchanged by `swapEyes`. A frame beyond the
/// last begins again.
void renderMotionEye(const MotionInputs& inputs, int frame, Eye eye, zre::Image& out,
                     MotionScratch& scratch);

/// Draws one frame in the stereo format of that row of `kStereoFormats`; else as `renderMotionEye`.
/// Without `scratch` it has memory of its own.
void renderMotionFrame(const MotionInputs& inputs, int frame, int stereo3d, zre::Image& out,
                       MotionScratch* scratch = nullptr);
