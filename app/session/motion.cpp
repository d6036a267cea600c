#include "app/session/motion.h"

#include <utility>

#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/image/raster.h"

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
