#include "app/session/depth_key.h"

#include "app/session/ai_depth_cue.h"
#include "app/session/keyed.h"

namespace {

QString flag(char name, bool on)
{
    return QLatin1Char(name) + QLatin1String(on ? "1" : "0");
}

void addLuminance(CacheKey& key, const zre::ZRParams& p)
{
    if (p.luminanceEnabled)
        key.text("L").number(p.luminanceWeight).number(p.structureWeight);
    AiDepthCue::addTo(key, p);
}

void addNarrowband(CacheKey& key, const zre::ZRParams& p)
{
    if (p.narrowbandEnabled && p.narrowbandWeight > 0.0f)
        key.text("N").number(p.narrowbandWeight).number(p.nearChannel).number(p.farChannel);
}

void addColourRows(CacheKey& key, const zre::ZRParams& p)
{
    if (p.colorDepthEnabled && p.colorDepthWeight > 0.0f)
        key.text("C")
            .number(p.colorDepthWeight)
            .number(p.colorDepthGamma)
            .number(p.colorDepthSmoothness)
            .number(p.colorDepthGaussian)
            .text(QString::fromStdString(p.colorDepthEntries));
}

void addExternalMap(CacheKey& key, const zre::ZRParams& p)
{
    if (p.depthMapEnabled && p.depthMapBlend > 0.0f)
        key.text("D")
            .number(p.depthMapBlend)
            .number(p.depthMapMode)
            .number(p.paintedSmoothness)
            .number(p.paintedGamma);
}

void addAnchor(CacheKey& key, const zre::ZRParams& p)
{
    if (p.resolveDistance && p.objectFit > 0.0f)
        key.text("O")
            .number(p.objectFit)
            .number(p.manualAnchorDepth)
            .number(p.objectThickness)
            .text(p.floorAuto ? "fa" : "fm")
            .number(p.backgroundFloor)
            .text(flag('m', p.manualAnchorOn));
}

void addGeneral(CacheKey& key, const zre::ZRParams& p)
{
    key.text("G")
        .number(p.structureScale)
        .number(p.invertDepth ? 1 : 0)
        .number(p.smoothness)
        .number(p.edgePreservation)
        .number(p.depthGamma);
}

/// Whether a cue, or a smoothing that follows the edges, reads the working image.
bool readsImage(const zre::ZRParams& p, bool hasMap)
{
    const bool luminance =
        p.luminanceEnabled && (p.luminanceWeight > 0.0f || p.structureWeight > 0.0f);
    const bool narrowband = p.narrowbandEnabled && p.narrowbandWeight > 0.0f;
    const bool colorRows = p.colorDepthEnabled && p.colorDepthWeight > 0.0f;
    const bool smoothedMap =
        hasMap && p.depthMapEnabled && p.depthMapBlend > 0.0f && p.paintedSmoothness > 0.0f;
    return luminance || AiDepthCue::counts(p) || narrowband || colorRows || smoothedMap;
}

} // namespace

QString depthKey(const Session& session, const QString& base, bool includeAnchor)
{
    const zre::ZRParams& p = session.params;
    const bool hasMap = session.externalDepth.usable();
    CacheKey key;
    key.text(QStringLiteral("v%1").arg(session.generation));
    key.text(flag('c', p.starSeparationEnabled || (p.syntheticStars && session.wcs.valid)));
    if (readsImage(p, hasMap))
        key.text(base);
    addLuminance(key, p);
    addNarrowband(key, p);
    addColourRows(key, p);
    if (hasMap)
        addExternalMap(key, p);
    if (includeAnchor)
        addAnchor(key, p);
    addGeneral(key, p);
    return key.str();
}
