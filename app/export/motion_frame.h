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

/// Draws one frame in the stereo format of that row of `kStereoFormats`; eyes are exchanged by
/// `swapEyes`. A frame beyond the last begins again. `scratch`, which may be null, saves a flyby
/// fresh memory for every frame.
void renderMotionFrame(const MotionInputs& inputs, int frame, int stereo3d, zre::Image& out,
                       zre::FlybyScratch* scratch = nullptr);
