#pragma once

#include <QString>

#include "app/export/motion_frame.h"
#include "app/session/flyby_path.h"

class RenderPipeline;
struct Session;

/// Changes with whatever shapes a frame drawn from `inputs`, which were just made from `session` by
/// `pipeline` under `options`, at `fraction` of full size.
QString frameCacheKey(const Session& session, const RenderPipeline& pipeline,
                      const MotionInputs& inputs, const FlybyOptions& options, double fraction);

/// Changes with the images and the stars that frames are made from, but not with the path.
QString motionImagesKey(const Session& session, const RenderPipeline& pipeline,
                        const MotionInputs& inputs);
