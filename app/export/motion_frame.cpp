#include "app/export/motion_frame.h"

#include <algorithm>

#include "app/export/video_plan.h"
#include "engine/flight/flyby_frame.h"
#include "engine/stereo/views.h"

static constexpr int kUsualFrames = 30;

int MotionInputs::frames() const
{
    if (flyby)
        return static_cast<int>(cameras.size());
    return params.wiggleFrames < 1 ? kUsualFrames : params.wiggleFrames;
}

QSize MotionInputs::frameSize() const
{
    const auto side = [&](int frame, int size) {
        return flyby && frame >= 1 && frame <= size ? frame : size;
    };
    return {side(params.flybyFrameW, working->width), side(params.flybyFrameH, working->height)};
}

/// The frame from a viewpoint `offset` eye units aside.
static void renderEyeFrame(const MotionInputs& inputs, int frame, double offset, zre::Image& out,
                           zre::FlybyScratch& scratch)
{
    const int frames = inputs.frames();
    if (!inputs.flyby) {
        zre::renderWiggleFrame(*inputs.working, *inputs.depth, frame, frames,
                               static_cast<double>(inputs.params.wiggleAmplitude),
                               inputs.convergence, inputs.params, out, inputs.stars, nullptr,
                               nullptr, offset);
        return;
    }
    if (frames < 1)
        return;
    const QSize size = inputs.frameSize();
    const zre::FlybyCamera& camera = inputs.cameras[static_cast<std::size_t>(frame % frames)];
    zre::renderFlybyFrame(*inputs.working, *inputs.depth, camera, inputs.ongoingWiggle,
                          inputs.convergence, inputs.params, out, inputs.stars, nullptr, nullptr,
                          offset, size.width(), size.height(), &scratch);
}

void renderMotionEye(const MotionInputs& inputs, int frame, Eye eye, zre::Image& out,
                     MotionScratch& scratch)
{
    const bool isLeft = (eye == Eye::Left) != inputs.params.swapEyes;
    renderEyeFrame(inputs, frame, isLeft ? 1.0 : -1.0, out, scratch.flyby);
}

void renderMotionFrame(const MotionInputs& inputs, int frame, int stereo3d, zre::Image& out,
                       MotionScratch* kept)
{
    MotionScratch own;
    MotionScratch& scratch = kept ? *kept : own;
    if (stereo3d <= kFlat) {
        renderEyeFrame(inputs, frame, 0.0, out, scratch.flyby);
        return;
    }
    zre::Image& left = scratch.left;
    zre::Image& right = scratch.right;
    renderMotionEye(inputs, frame, Eye::Left, left, scratch);
    renderMotionEye(inputs, frame, Eye::Right, right, scratch);
    const QSize size = inputs.frameSize();
    switch (stereo3d) {
    case kSideBySide:
        zre::packEyes(left, right, out, true, size.width(), size.height());
        break;
    case kHalfSideBySide:
        zre::packEyes(left, right, out, true, size.width() / 2, size.height());
        break;
    case kTopBottom:
        zre::packEyes(left, right, out, false, size.width(), size.height() / 2);
        break;
    default:
        zre::makeAnaglyph(left, right, out, inputs.params.anaglyphMode, 1.0, 1.0, 1.0);
    }
}
