#include "app/session/render_pipeline.h"

#include <algorithm>
#include <utility>

#include <QElapsedTimer>

#include "app/session/depth_key.h"
#include "app/session/output_view.h"
#include "engine/depth/depth_map.h"
#include "engine/image/raster.h"
#include "engine/stars/star_depth.h"
#include "engine/stereo/views.h"

namespace {

// Shares of the percent range behind the stars: the depth map, then the eyes.
constexpr int kLearnedDepthPercent = 70;
constexpr int kDepthPercent = 72;
constexpr double kDepthPercentSpan = 18.0;
constexpr double kEyesPercent = kDepthPercent + kDepthPercentSpan;
constexpr double kEyesPercentSpan = 100.0 - kEyesPercent;

const QString kBuildingDepth = QStringLiteral("Building depth map...");
const QString kRendering = QStringLiteral("Rendering...");

void say(QString* status, const QString& text)
{
    if (status)
        *status = text;
}

} // namespace

RenderPipeline::RenderPipeline(Session& owner)
    : session(owner)
    , starStage(owner, [this](int percent, const QString& text) { stage(percent, text); })
{
}

void RenderPipeline::setStageReporter(std::function<void(int, const QString&)> reporter)
{
    stageReporter = std::move(reporter);
}

void RenderPipeline::clear()
{
    aiDepth.clear();
    cueDepth.clear();
    anchoredDepth.clear();
    finalDepth.clear();
    depthMedian.clear();
    removal.clear();
    starStage.clear();
    depthText.clear();
}

void RenderPipeline::stage(int percent, const QString& text) const
{
    if (stageReporter)
        stageReporter(percent, text);
}

zre::Progress RenderPipeline::eyeProgress() const
{
    if (!stageReporter)
        return {};
    return [this](double fraction) {
        stage(static_cast<int>(kEyesPercent + kEyesPercentSpan * fraction), kRendering);
    };
}

bool RenderPipeline::separationPending() const
{
    return starStage.road() == StarRoad::Learned && !starStage.learnedStands();
}

int RenderPipeline::firstPercent() const
{
    return separationPending() ? StarStage::kInferencePercent : StarStage::kDetectionPercent;
}

RenderPipeline::LevelBuilds RenderPipeline::levelBuilds() const
{
    LevelBuilds all = builds;
    all.detections = starStage.detections();
    all.erasureUpdates = starStage.erasureUpdates();
    return all;
}

void RenderPipeline::setTrueColor(bool on)
{
    starStage.setTrueColor(on);
}

void RenderPipeline::prepareInputs()
{
    if (session.hasSource())
        starStage.prepare();
}

void RenderPipeline::prepareStars()
{
    cachedDepth();
}

const zre::Image& RenderPipeline::working() const
{
    return starStage.working();
}

const std::vector<zre::Star>* RenderPipeline::activeStars() const
{
    return starStage.stars().empty() ? nullptr : &starStage.stars();
}

std::vector<zre::Star>& RenderPipeline::stars()
{
    return starStage.stars();
}

int RenderPipeline::starsShown() const
{
    const std::vector<zre::Star>& list = starStage.stars();
    return static_cast<int>(std::count_if(
        list.begin(), list.end(), [](const zre::Star& star) { return star.depth >= 0.0f; }));
}

QString RenderPipeline::starDetector() const
{
    switch (starStage.preparedRoad()) {
    case StarRoad::Pair:
        return QStringLiteral("stars layer");
    case StarRoad::Learned:
        return QStringLiteral("AI");
    case StarRoad::Classical:
        return QStringLiteral("classical");
    case StarRoad::Off:
        break;
    }
    return {};
}

QString RenderPipeline::starDepthText() const
{
    return depthText;
}

void RenderPipeline::ensureAiDepth()
{
    aiDepth.ensure(session, [this](const QString& text) { stage(kLearnedDepthPercent, text); });
}

zre::DepthInputs RenderPipeline::depthInputs() const
{
    zre::DepthInputs inputs;
    if (session.externalDepth.usable())
        inputs.externalDepth = &session.externalDepth;
    inputs.aiDepth = aiDepth.image();
    return inputs;
}

QString RenderPipeline::depthCacheKey(bool /*includeModel*/, bool includeAnchor) const
{
    return depthKey(session, starStage.baseKey(), includeAnchor);
}

void RenderPipeline::buildCues(zre::Image& out)
{
    ++builds.cues;
    double fraction = 0.0;
    QString text = kBuildingDepth;
    const auto report = [&] {
        stage(static_cast<int>(kDepthPercent + kDepthPercentSpan * fraction), text);
    };
    report();
    const zre::Progress progress = [&](double done) {
        fraction = done;
        report();
    };
    const zre::StageText stageText = [&](const std::string& name) {
        text = QString::fromStdString(name);
        report();
    };
    zre::buildDepthCues(working(), session.params, depthInputs(), out, progress, stageText);
}

const zre::Image& RenderPipeline::anchoredLevel()
{
    ensureAiDepth();
    const zre::Image& cues =
        cueDepth.get(depthCacheKey(false, false), [&](zre::Image& out) { buildCues(out); });
    return anchoredDepth.get(depthCacheKey(false, true), [&](zre::Image& out) {
        ++builds.anchor;
        zre::applyAnchor(cues, session.params, out);
    });
}

const zre::Image* RenderPipeline::cachedDepth()
{
    if (!session.hasSource())
        return nullptr;
    prepareInputs();
    const zre::Image& anchored = anchoredLevel();
    const zre::Image& depth = finalDepth.get(depthCacheKey(true, true), [&](zre::Image& out) {
        ++builds.final;
        zre::compositeDepthModel(anchored, session.params, depthInputs(), out);
    });
    assignDepths(depth);
    return &depth;
}

void RenderPipeline::assignDepths(const zre::Image& depth)
{
    constexpr int kScattered = 2;
    constexpr int kRealDistances = 3;
    const zre::ZRParams& p = session.params;
    zre::StarDepthParams where;
    where.mode = p.starDepthModel;
    where.plane = p.starPlane;
    where.range = p.starDepthRange;
    where.floatation = p.starFloatation;
    where.pop = p.starPop;
    where.maxRendered = p.starMaxRendered;
    depthText.clear();
    if (where.mode == kRealDistances) {
        depthText = session.wcs.valid
                        ? QStringLiteral("Real depth: no Star catalog found; using random spread")
                        : QStringLiteral("Real depth: image has no astrometric solution; "
                                         "using random spread");
        where.mode = kScattered;
    }
    zre::assignStarDepths(depth, starStage.stars(), where);
}

const zre::Image* RenderPipeline::standingDepth() const
{
    return session.hasSource() ? finalDepth.peek(depthCacheKey(true, true)) : nullptr;
}

void RenderPipeline::computeCleanDepth(zre::Image& out)
{
    if (!session.hasSource())
        return;
    prepareInputs();
    out = anchoredLevel();
}

bool RenderPipeline::renderView(int view, const AnaglyphGains& gains, zre::Image& out,
                                QString* status)
{
    if (!session.hasSource())
        return false;
    switch (view) {
    case kSourceView:
        out = session.source;
        say(status, QStringLiteral("Source  -  %1 x %2").arg(out.width).arg(out.height));
        return true;
    case kDepthView:
        renderDepthView(out, status);
        return true;
    case kAnaglyphView:
        renderAnaglyphView(gains, out, status);
        return true;
    case kPairView:
        renderPair(out, status);
        return true;
    case kStarsOverStarlessView:
        renderStarsOverStarless(out, status);
        return true;
    default:
        return buildLayerView(view, out, status);
    }
}

void RenderPipeline::renderDepthView(zre::Image& out, QString* status)
{
    QElapsedTimer timer;
    timer.start();
    out = *cachedDepth();
    say(status, QStringLiteral("Depth map  -  %1 x %2  -  built in %3 ms")
                    .arg(out.width)
                    .arg(out.height)
                    .arg(timer.elapsed()));
}

void RenderPipeline::renderAnaglyphView(const AnaglyphGains& gains, zre::Image& out,
                                        QString* status)
{
    QElapsedTimer timer;
    timer.start();
    const zre::Image& depth = *cachedDepth();
    zre::renderAnaglyph(working(), depth, session.params, out, activeStars(), eyeProgress(),
                        nullptr, nullptr, gains.r, gains.g, gains.b);
    const double parallax = static_cast<double>(session.params.parallaxAmount);
    const QString detector =
        activeStars() ? QStringLiteral(" (%1)").arg(starDetector()) : QString();
    say(status, QStringLiteral("Red/cyan anaglyph  -  %1 x %2  -  %3 px  -  %4 stars%5  -  %6 ms")
                    .arg(QString::number(out.width), QString::number(out.height),
                         QString::number(parallax, 'f', 1), QString::number(starsShown()), detector,
                         QString::number(timer.elapsed())));
}

void RenderPipeline::renderPair(zre::Image& out, QString* status)
{
    QElapsedTimer timer;
    timer.start();
    const zre::Image& depth = *cachedDepth();
    zre::renderSideBySide(working(), depth, session.params, out, activeStars(), eyeProgress(),
                          nullptr, nullptr);
    say(status, QStringLiteral("Side-by-side  -  %1 x %2  -  %3 ms%4")
                    .arg(QString::number(out.width), QString::number(out.height),
                         QString::number(timer.elapsed()),
                         activeStars() ? QStringLiteral("  -  stars") : QString()));
}

bool RenderPipeline::renderWiggle(int frame, zre::Image& out)
{
    if (!session.hasSource())
        return false;
    const zre::Image& depth = *cachedDepth();
    const zre::ZRParams& p = session.params;
    const double convergence =
        p.autoConvergence
            ? depthMedian.get(depthCacheKey(true, true),
                              [&](double& median) { median = zre::medianValue(depth); })
            : static_cast<double>(p.convergence);
    zre::renderWiggleFrame(working(), depth, frame, p.wiggleFrames,
                           static_cast<double>(p.wiggleAmplitude), convergence, p, out,
                           activeStars(), nullptr, nullptr, 0.0);
    return true;
}
