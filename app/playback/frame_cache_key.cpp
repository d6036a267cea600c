#include "app/playback/frame_cache_key.h"

#include <QCryptographicHash>

#include "app/persist/appcfg.h"
#include "app/persist/param_text.h"
#include "app/playback/preview_inputs.h"
#include "app/session/keyed.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"

static QString hashOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
}

/// Where the stars stand and how deep; their light follows from the picture and the parameters.
static QString starsHash(const std::vector<zre::Star>* stars)
{
    if (!stars)
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const zre::Star& star : *stars) {
        const double values[] = {star.x, star.y, double(star.depth), double(star.peak),
                                 double(star.sprite.size())};
        hash.addData(QByteArray(reinterpret_cast<const char*>(values), sizeof(values)));
    }
    return hash.result().toHex();
}

static QString textOf(const zre::ZRParams& params)
{
    return zrproj::paramsToText(params, 0, {}, {});
}

/// `params` without what only moves the viewpoint.
static zre::ZRParams withoutPath(zre::ZRParams params)
{
    const zre::ZRParams fresh;
    params.parallaxAmount = fresh.parallaxAmount;
    params.maxDisparity = fresh.maxDisparity;
    params.convergence = fresh.convergence;
    params.wiggleFrames = fresh.wiggleFrames;
    params.wiggleFps = fresh.wiggleFps;
    params.wiggleAmplitude = fresh.wiggleAmplitude;
    params.wigglePathAngle = fresh.wigglePathAngle;
    params.wiggleCircular = fresh.wiggleCircular;
    params.flybyFrameW = fresh.flybyFrameW;
    params.flybyFrameH = fresh.flybyFrameH;
    return params;
}

QString motionImagesKey(const Session& session, const RenderPipeline& pipeline,
                        const MotionInputs& inputs)
{
    CacheKey key;
    key.text("v").number(session.generation);
    key.text(pipeline.depthCacheKey(true, true));
    key.text(pipeline.starDetector());
    key.number(inputs.stars ? double(inputs.stars->size()) : 0.0).text(starsHash(inputs.stars));
    key.text(appcfg::starTrueColor() ? "tc1" : "tc0");
    key.text(hashOf(textOf(withoutPath(inputs.params)).toUtf8()));
    return key.str();
}

QString frameCacheKey(const Session& session, const RenderPipeline& pipeline,
                      const MotionInputs& inputs, const FlybyOptions& options, double fraction)
{
    CacheKey key;
    key.text("v").number(session.generation).text(inputs.flyby ? "f1" : "f0").text("25");
    key.number(inputs.frames());
    if (inputs.flyby) {
        if (fraction < kFullScale)
            key.text("b1").number(fraction);
        key.text(options.ongoingWiggle ? "w1" : "w0").text(options.continuousLoop ? "l1" : "l0");
        key.text(hashOf(session.flybyScript.toUtf8()));
    }
    key.text(motionImagesKey(session, pipeline, inputs));
    key.text(hashOf(textOf(inputs.params).toUtf8()));
    return key.str();
}
