#pragma once

#include <functional>

#include <QImage>

#include "app/export/motion_frame.h"

/// Draws the frames of a motion from `first` on as pictures of `format`, which `zre_qt::toQImage`
/// knows, in the stereo format of that row of `kStereoFormats`.
///
/// Several threads may call it at once; they share memory for scratch, which goes with the last
/// copy. `inputs` outlives it.
std::function<QImage(int frame)> motionPictures(const MotionInputs& inputs, int first, int stereo3d,
                                                QImage::Format format);
