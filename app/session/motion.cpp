#include "app/session/motion.h"

#include <utility>

#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/image/raster.h"

static int ownRate(bool flyby, const FlybyPath& path, const zre::ZRParams& params)
{
    constexpr int kUsualFlybyFps = 24;
    constexpr int kUsualWiggleFps = 20;
    if (flyby && !path.builtIn && !path.cameras.empty() && path.cameras.front().fps > 0)
        return path.cameras.front().fps;
    if (params.wiggleFps > 0)
        return params.wiggleFps;
    return flyby ? kUsualFlybyFps : kUsualWiggleFps;
}

MotionFacts motionFacts(const Session& session, bool flyby, const FlybyOptions& options)
{
    MotionFacts facts;
    if (flyby)
        facts.path = compileFlyby(session.flybyScript, session.params, session.source.width,
                                  session.source.height, options);
    MotionInputs inputs;
    inputs.working = &session.source;
    inputs.params = session.params;
    inputs.flyby = flyby;
    facts.frames = flyby ? static_cast<int>(facts.path.cameras.size()) : inputs.frames();
    facts.fps = ownRate(flyby, facts.path, session.params);
    facts.frame = inputs.frameSize();
    return facts;
}

MotionInputs motionInputs(const Session& session, RenderPipeline& pipeline, bool flyby,
                          const FlybyOptions& options, QString* builtInReason)
{
    if (builtInReason)
        builtInReason->clear();
    MotionInputs inputs;
    inputs.flyby = flyby;
    inputs.depth = pipeline.cachedDepth();
    if (!inputs.depth)
        return inputs;
    inputs.working = &pipeline.working();
    inputs.stars = pipeline.activeStars();
    inputs.params = session.params;
    inputs.convergence = session.params.autoConvergence
                             ? zre::medianValue(*inputs.depth)
                             : static_cast<double>(session.params.convergence);
    inputs.ongoingWiggle = options.ongoingWiggle;
    if (!flyby)
        return inputs;
    FlybyPath path = compileFlyby(session.flybyScript, session.params, session.source.width,
                                  session.source.height, options);
    if (builtInReason && path.builtIn)
        *builtInReason = path.status;
    inputs.cameras = std::move(path.cameras);
    return inputs;
}
