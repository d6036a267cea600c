#pragma once

#include "app/export/motion_frame.h"
#include "app/session/flyby_path.h"

class RenderPipeline;
struct Session;

/// What can be told of a motion before anything of it is drawn.
struct MotionFacts
{
    int frames = 0;
    int fps = 0; ///< its own rate
    QSize frame; ///< of one eye
    FlybyPath path;
};

/// Of the session's parallax motion, or of its flyby.
MotionFacts motionFacts(const Session& session, bool flyby, const FlybyOptions& options);

/// What the frames of the session's parallax motion, or of its flyby, are made of, up to date: the
/// working image, the depth map and the stars of `pipeline`, which have to outlive the result and
/// stay as they are. Without a source the images are null. `builtInReason` (may be null) is what
/// the user is told when the built-in flyby stands in for the session's script, else empty.
MotionInputs motionInputs(const Session& session, RenderPipeline& pipeline, bool flyby,
                          const FlybyOptions& options, QString* builtInReason = nullptr);
