#include "app/session/star_stage.h"

#include <algorithm>
#include <utility>

#include <QFile>
#include <QFileInfo>

#include "app/session/erasure_change.h"
#include "app/session/keyed.h"
#include "app/session/star_detection.h"
#include "engine/inference/starless_ai.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/heal_starless.h"
#include "engine/stars/star_list.h"
#include "engine/stars/star_sprites.h"

namespace {

enum StarInputMode
{
    kStarsOfTheImage = 0,
    kStarsOfAPair = 2
};

/// The picture less its starless half, as both were seen; never below 0.
zre::Image starsBetween(const zre::Image& picture, const zre::Image& starless)
{
    zre::Image layer = picture;
    for (int c = 0; c < layer.channels; ++c) {
        const float* taken = starless.plane(std::min(c, starless.channels - 1));
        float* light = layer.plane(c);
        for (std::size_t i = 0; i < layer.pixelCount(); ++i)
            light[i] = std::max(0.0f, light[i] - taken[i]);
    }
    return layer;
}

/// The model answers a grey picture in colour, and its planes differ a little.
void makeGrey(zre::Image& image)
{
    float* grey = image.plane(0);
    const float* green = image.plane(1);
    const float* blue = image.plane(2);
    for (std::size_t i = 0; i < image.pixelCount(); ++i)
        grey[i] = (grey[i] + green[i] + blue[i]) / 3.0f;
    image.data.resize(image.pixelCount());
    image.data.shrink_to_fit();
    image.channels = 1;
    image.colorModel = 0;
}

const char* roadTag(StarRoad road)
{
    switch (road) {
    case StarRoad::Pair:
        return "ps";
    case StarRoad::Learned:
        return "ai";
    case StarRoad::Classical:
        return "cl";
    case StarRoad::Off:
        break;
    }
    return "off";
}

} // namespace

StarStage::StarStage(Session& owner, Reporter reporter)
    : session(owner)
    , report(std::move(reporter))
{
}

void StarStage::clear()
{
    leaveStarsIn();
    learned = zre::Image();
    learnedStandsFor.reset();
    learnedFailedFor.reset();
    failure.clear();
}

StarRoad StarStage::road() const
{
    const zre::ZRParams& p = session.params;
    if (!p.starSeparationEnabled)
        return StarRoad::Off;
    if (session.hasPair())
        return StarRoad::Pair;
    return canLearn() ? StarRoad::Learned : StarRoad::Classical;
}

/// The runtime is a large library that speaks when it comes up: without a model it is not asked
/// for.
bool StarStage::canLearn() const
{
    return session.params.aiStarSeparation && learnedFailedFor != learnedKey() &&
           QFileInfo(QFile::decodeName(zre::StarlessAI::modelPath().c_str())).isFile() &&
           zre::StarlessAI::available(nullptr);
}

QString StarStage::learnedKey() const
{
    CacheKey key;
    key.number(session.imageGeneration).text(QString::fromStdString(zre::StarlessAI::modelPath()));
    return key.str();
}

/// Fields that a road does not read count as untouched, so that their change detects nothing anew.
zre::StarDetectParams StarStage::detectParams(StarRoad road) const
{
    const zre::StarDetectParams untouched;
    zre::StarDetectParams detect = zre::starDetectParams(session.params);
    if (road == StarRoad::Classical) {
        detect.companionWipe = untouched.companionWipe;
        detect.splitRatio = untouched.splitRatio;
    } else {
        detect.backgroundScale = untouched.backgroundScale;
        detect.maxRadius = untouched.maxRadius;
    }
    return detect;
}

QString StarStage::detectionKey(StarRoad road) const
{
    CacheKey key;
    key.text(QStringLiteral("v%1").arg(session.imageGeneration)).text(roadTag(road));
    if (road == StarRoad::Learned)
        key.text(learnedKey());
    addDetection(key, detectParams(road));
    if (road == StarRoad::Classical)
        key.text(session.params.fillBehindStars ? "fb1" : "fb0");
    key.text(trueColor ? "tc1" : "tc0");
    return key.str();
}

bool StarStage::standsFor(const QString& key) const
{
    return starsKey == key && starsErasures == session.params.starErasures;
}

void StarStage::nowStandsFor(const QString& key, StarRoad road)
{
    starsKey = key;
    starsErasures = session.params.starErasures;
    prepared = road;
}

/// Erasures into the background or the glow, and the texture that closes the holes of companions,
/// change the base.
bool StarStage::givesLightBack(const zre::StarDetectParams& detect) const
{
    const std::vector<zre::StarErasure>& erasures = session.params.starErasures;
    return detect.companionWipe > 0.0f ||
           std::any_of(erasures.begin(), erasures.end(),
                       [](const zre::StarErasure& erasure) { return erasure.mode != 0; });
}

QString StarStage::baseKey() const
{
    const StarRoad taken = road();
    const zre::StarDetectParams detect = detectParams(taken);
    CacheKey key;
    key.text(taken == StarRoad::Learned ? "ai1" : "ai0");
    if (taken == StarRoad::Classical)
        key.number(detect.thresholdSigma)
            .number(detect.minPeak)
            .number(detect.maxRadius)
            .number(detect.backgroundScale)
            .text(session.params.fillBehindStars ? "fb1" : "fb0");
    if (taken == StarRoad::Classical && session.params.fillBehindStars)
        addDetection(key, detect); // what sprites cover is filled
    key.text(taken == StarRoad::Pair ? "ps1" : "ps0");
    if (taken == StarRoad::Learned)
        key.text(learnedKey());
    const bool layered = taken == StarRoad::Pair || taken == StarRoad::Learned;
    if (layered && givesLightBack(detect))
        key.text("kb")
            .number(detect.thresholdSigma)
            .number(detect.minPeak)
            .number(detect.splitRatio)
            .number(detect.companionWipe);
    const bool erased = !session.params.starErasures.empty() && taken != StarRoad::Off;
    if (erased && (taken == StarRoad::Classical || givesLightBack(detect)))
        key.text(erasureCacheKey(session.params.starErasures));
    return key.str();
}

const zre::Image& StarStage::working() const
{
    switch (base) {
    case Base::Pair:
        return session.starless;
    case Base::Learned:
        return learned;
    case Base::Own:
        return own;
    case Base::Source:
        break;
    }
    return session.source;
}

QString StarStage::separationFailure() const
{
    const bool couldLearn = session.params.aiStarSeparation && learnedFailedFor == learnedKey();
    return couldLearn && prepared == StarRoad::Classical ? failure : QString();
}

void StarStage::prepare()
{
    zre::ZRParams& p = session.params;
    if (learnedStandsFor && learnedStandsFor != learnedKey()) {
        learned = zre::Image();
        learnedStandsFor.reset();
    }
    if (!p.aiStarSeparation)
        learnedFailedFor.reset(); // switched on again it is tried again
    if (!p.starSeparationEnabled)
        leaveStarsIn();
    else if (session.hasPair())
        detectInLayer(StarRoad::Pair, session.starless, Base::Pair);
    else if (const zre::Image* starless = ensureAiStarless())
        detectInLayer(StarRoad::Learned, *starless, Base::Learned);
    else
        detectClassically();
    p.sourceIsStarless = p.starSeparationEnabled;
    p.starInputMode = session.hasPair() ? kStarsOfAPair : kStarsOfTheImage;
}

void StarStage::leaveStarsIn()
{
    starList = {};
    starsKey.reset();
    starsErasures.clear();
    layerStats.clear();
    prepared = StarRoad::Off;
    base = Base::Source;
    own = zre::Image();
}

const zre::Image* StarStage::ensureAiStarless()
{
    const QString key = learnedKey();
    if (!canLearn())
        return nullptr;
    if (learnedStandsFor == key)
        return &learned;
    const QString text = QStringLiteral("Separating stars from the image");
    const auto progress = [&](int done, int total) {
        report(kInferencePercent + (kDetectionPercent - kInferencePercent) * done / total, text);
    };
    report(kInferencePercent, text);
    std::string error;
    if (!zre::StarlessAI::run(session.source, learned, &error, progress)) {
        learnedFailedFor = key;
        failure =
            QStringLiteral("AI star separation failed: %1").arg(QString::fromStdString(error));
        report(kDetectionPercent, failure);
        return nullptr;
    }
    if (session.source.channels < 3)
        makeGrey(learned);
    learnedStandsFor = key;
    return &learned;
}

void StarStage::recolor(std::vector<zre::Star>& list) const
{
    if (trueColor)
        zre::recolorStarSpritesFromSource(list, session.source);
}

void StarStage::detectClassically()
{
    const QString key = detectionKey(StarRoad::Classical);
    if (standsFor(key))
        return;
    starsKey.reset();
    report(kDetectionPercent, QStringLiteral("Detecting stars..."));
    ++fullDetections;
    zre::detectStars(session.source, starList, own, detectParams(StarRoad::Classical),
                     &session.params.starErasures);
    if (session.params.fillBehindStars)
        zre::healStarless(session.source, starList, own);
    recolor(starList);
    base = Base::Own;
    nowStandsFor(key, StarRoad::Classical);
}

void StarStage::detectInLayer(StarRoad road, const zre::Image& starless, Base untouched)
{
    const QString key = detectionKey(road);
    if (standsFor(key))
        return;
    zre::Image difference;
    if (road == StarRoad::Learned)
        difference = starsBetween(session.source, starless);
    const zre::Image& layer = road == StarRoad::Learned ? difference : session.starsLayer;
    const zre::StarDetectParams detect = detectParams(road);
    const bool onlyErasuresChanged = starsKey == key;
    starsKey.reset();
    own = zre::Image();
    zre::Image light;
    zre::Image* keepBack = givesLightBack(detect) ? &light : nullptr;
    const QString layerKey = roadTag(road) + learnedKey();
    if (!onlyErasuresChanged ||
        !tryIncrementalErasureUpdate(layerKey, layer, starless, detect, keepBack))
        detectAll(road, layer, starless, keepBack);
    base = untouched;
    if (light.usable()) {
        own = zre::compositeStarlessStars(starless, light);
        base = Base::Own;
    }
    nowStandsFor(key, road);
}

void StarStage::detectAll(StarRoad road, const zre::Image& layer, const zre::Image& starless,
                          zre::Image* keepBack)
{
    report(kDetectionPercent, road == StarRoad::Pair ? QStringLiteral("Reading stars layer...")
                                                     : QStringLiteral("Locating stars (AI)..."));
    ++fullDetections;
    zre::detectStarsFromResidual(layer, starList, detectParams(road), &starless,
                                 &session.params.starErasures, keepBack, nullptr);
    recolor(starList);
}

bool StarStage::tryIncrementalErasureUpdate(const QString& layerKey, const zre::Image& layer,
                                            const zre::Image& starless,
                                            const zre::StarDetectParams& detect,
                                            zre::Image* keepBack)
{
    // Wiped companions anywhere have put texture into the base, which only a whole detection finds.
    if (starList.empty() || !layer.usable() || detect.companionWipe > 0.0f)
        return false;
    const std::vector<zre::StarErasure>& erasures = session.params.starErasures;
    const std::vector<zre::StarErasure> changed = changedErasures(starsErasures, erasures);
    if (changed.empty())
        return true;
    report(kDetectionPercent, QStringLiteral("Updating edited sprites..."));
    const std::vector<std::uint8_t> mask = erasureSearchMask(changed, layer.width, layer.height);
    std::vector<zre::Star> fresh;
    const zre::LayerStats& stats = layerStats.get(
        layerKey, [&](zre::LayerStats& made) { made = zre::starsLayerStats(layer); });
    zre::detectStarsFromResidual(layer, fresh, detect, &starless, &erasures, keepBack, &mask,
                                 &stats);
    recolor(fresh);
    ++updates;
    return zre::spliceStarsByCentroid(starList, fresh) == fresh.size();
}
