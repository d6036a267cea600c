#include "app/session/render_pipeline.h"

#include <algorithm>
#include <utility>

#include <QElapsedTimer>

#include "engine/depth/depth_map.h"
#include "engine/image/raster.h"
#include "engine/stereo/views.h"

namespace {

// Shares of the percent range: the depth map, then the eyes.
constexpr double kDepthPercentSpan = 18.0;
constexpr double kEyesPercent = RenderPipeline::kFirstPercent + kDepthPercentSpan;
constexpr double kEyesPercentSpan = 100.0 - kEyesPercent;

const QString kBuildingDepth = QStringLiteral("Building depth map...");
const QString kRendering = QStringLiteral("Rendering...");

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

void say(QString* status, const QString& text)
{
    if (status)
        *status = text;
}

} // namespace

RenderPipeline::RenderPipeline(Session& owner)
    : session(owner)
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

void RenderPipeline::prepareInputs()
{
    session.params.sourceIsStarless = false;
}

const zre::Image& RenderPipeline::working() const
{
    return session.source;
}

void RenderPipeline::setTrueColor(bool on)
{
    trueColor = on;
}

void RenderPipeline::prepareStars()
{
    cachedDepth();
}

const std::vector<zre::Star>* RenderPipeline::activeStars() const
{
    return starList.empty() ? nullptr : &starList;
}

std::vector<zre::Star>& RenderPipeline::stars()
{
    return starList;
}

int RenderPipeline::starsShown() const
{
    return static_cast<int>(
        std::count_if(starList.begin(), starList.end(),
                      [](const zre::Star& star) { return star.depth >= 0.0f; }));
}

QString RenderPipeline::starDetector() const
{
    return {};
}

QString RenderPipeline::starDepthText() const
{
    return {};
}

void RenderPipeline::ensureAiDepth()
{
    aiDepth.ensure(session, [this](const QString& text) { stage(kFirstPercent, text); });
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
    const zre::ZRParams& p = session.params;
    CacheKey key;
    key.text(QStringLiteral("v%1").arg(session.generation));
    key.text(flag('c', p.starSeparationEnabled || (p.syntheticStars && session.wcs.valid)));
    addLuminance(key, p);
    addNarrowband(key, p);
    addColourRows(key, p);
    if (session.externalDepth.usable())
        addExternalMap(key, p);
    if (includeAnchor)
        addAnchor(key, p);
    addGeneral(key, p);
    return key.str();
}

void RenderPipeline::buildCues(zre::Image& out)
{
    ++builds.cues;
    double fraction = 0.0;
    QString text = kBuildingDepth;
    const auto report = [&] {
        stage(static_cast<int>(kFirstPercent + kDepthPercentSpan * fraction), text);
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
    return &finalDepth.get(depthCacheKey(true, true), [&](zre::Image& out) {
        ++builds.final;
        zre::compositeDepthModel(anchored, session.params, depthInputs(), out);
    });
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
    case 0:
        out = session.source;
        say(status, QStringLiteral("Source  -  %1 x %2").arg(out.width).arg(out.height));
        return true;
    case 1:
        renderDepthView(out, status);
        return true;
    case 2:
        renderAnaglyphView(gains, out, status);
        return true;
    case 3:
        renderPair(out, status);
        return true;
    default:
        return false;
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
    zre::renderAnaglyph(working(), depth, session.params, out, nullptr, eyeProgress(), nullptr,
                        nullptr, gains.r, gains.g, gains.b);
    const double parallax = static_cast<double>(session.params.parallaxAmount);
    say(status, QStringLiteral("Red/cyan anaglyph  -  %1 x %2  -  %3 px  -  %4 stars%5  -  %6 ms")
                    .arg(QString::number(out.width), QString::number(out.height),
                         QString::number(parallax, 'f', 1), QString::number(0), QString(),
                         QString::number(timer.elapsed())));
}

void RenderPipeline::renderPair(zre::Image& out, QString* status)
{
    QElapsedTimer timer;
    timer.start();
    const zre::Image& depth = *cachedDepth();
    zre::renderSideBySide(working(), depth, session.params, out, nullptr, eyeProgress(), nullptr,
                          nullptr);
    say(status, QStringLiteral("Side-by-side  -  %1 x %2  -  %3 ms%4")
                    .arg(QString::number(out.width), QString::number(out.height),
                         QString::number(timer.elapsed()), QString()));
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
                           static_cast<double>(p.wiggleAmplitude), convergence, p, out, nullptr,
                           nullptr, nullptr, 0.0);
    return true;
}
