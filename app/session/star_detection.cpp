#include "app/session/star_detection.h"

namespace zre {

StarDetectParams starDetectParams(const ZRParams& params)
{
    constexpr float kSplitRatio = 0.6f;
    StarDetectParams detect;
    detect.backgroundScale = params.backgroundScale;
    detect.thresholdSigma = params.thresholdSigma;
    detect.minPeak = params.minPeak;
    detect.maxRadius = params.maxRadius;
    detect.companionWipe = params.starCompanionWipe;
    detect.splitRatio = params.starClusterSplit ? kSplitRatio : 0.0f;
    detect.softEdges = params.starSoftEdges;
    detect.edgeGlow = params.starEdgeGlow;
    detect.edgeSoftness = params.starEdgeSoftness;
    return detect;
}

} // namespace zre

QString erasureCacheKey(const std::vector<zre::StarErasure>& erasures)
{
    constexpr int kPlaceDigits = 10;
    constexpr int kSizeDigits = 6;
    const auto digits = [](double value, int count) { return QString::number(value, 'g', count); };
    QString key = QString::number(erasures.size());
    for (const zre::StarErasure& e : erasures)
        key += QStringLiteral(":%1,%2,%3,%4,%5")
                   .arg(digits(e.x, kPlaceDigits), digits(e.y, kPlaceDigits),
                        digits(e.radius, kSizeDigits), digits(e.feather, kSizeDigits),
                        QString::number(e.mode));
    return key;
}

void addDetection(CacheKey& key, const zre::StarDetectParams& detect)
{
    const auto& [backgroundScale, thresholdSigma, minPeak, maxRadius, companionWipe,
                 companionSeparation, companionProminence, splitRatio, maxFeather, maxStars,
                 softEdges, edgeGlow, edgeSoftness] = detect;
    for (const float value : {backgroundScale, thresholdSigma, minPeak, companionWipe,
                              companionProminence, splitRatio, edgeGlow, edgeSoftness})
        key.number(static_cast<double>(value));
    for (const int value :
         {maxRadius, companionSeparation, maxFeather, maxStars, softEdges ? 1 : 0})
        key.number(value);
}
