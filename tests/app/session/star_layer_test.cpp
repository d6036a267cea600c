#include <random>

#include "app/persist/param_table.h"
#include "app/session/erasure_change.h"
#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "engine/demo/demo_scene.h"
#include "engine/inference/starless_ai.h"
#include "engine/stars/star_sprites.h"
#include "tests/support/testkit.h"

namespace {

using Erasures = std::vector<zre::StarErasure>;

constexpr int kWidth = 240;
constexpr int kHeight = 150;

/// A nebula, and stars of several sizes and colours on black: some touch.
struct Scene
{
    zre::Image starless = zre::makeDemoScene({kWidth, kHeight, 5, 0}).picture;
    zre::Image stars{kWidth, kHeight, 1};
    zre::Wcs solution;

    Scene()
    {
        std::mt19937 random(3);
        for (int y = 12; y < kHeight - 8; y += 22)
            for (int x = 10; x < kWidth - 8; x += 4 + static_cast<int>(random() % 40))
                plant(x + 0.1 * (random() % 10), y + 0.2 * (random() % 20),
                      0.25 + 0.01 * (random() % 50), 1.0 + 0.1 * (random() % 9));
        zre::makeSyntheticWcs(10.0, 20.0, 2.0, 0.0, kWidth, kHeight, solution);
    }

    void plant(double x, double y, double peak, double sigma)
    {
        for (int c = 0; c < 3; ++c)
            for (int j = 0; j < kHeight; ++j)
                for (int i = 0; i < kWidth; ++i) {
                    const double r2 = (i - x) * (i - x) + (j - y) * (j - y);
                    stars.plane(c)[j * kWidth + i] += static_cast<float>(
                        peak * (1.0 - 0.15 * c) * std::exp(-0.5 * r2 / (sigma * sigma)));
                }
    }
};

const Scene& scene()
{
    static const Scene made;
    return made;
}

Session photograph()
{
    Session session;
    session.installSource("photograph.png",
                          zre::compositeStarlessStars(scene().starless, scene().stars),
                          scene().solution, {});
    session.params.thresholdSigma = 3.0f;
    return session;
}

Session pair()
{
    Session session;
    session.installPair("stars.png", "starless.png", scene().stars, scene().starless,
                        scene().solution, {});
    return session;
}

struct Document
{
    const char* name;
    Session (*make)();
};

class StarLayer : public testing::TestWithParam<Document>
{
};

INSTANTIATE_TEST_SUITE_P(Documents, StarLayer,
                         testing::Values(Document{"photograph", photograph},
                                         Document{"pair", pair}),
                         [](const auto& document) { return document.param.name; });

/// Whether a pipeline that has gone through changes holds what one holds that never saw another
/// state of the session.
void expectUpToDate(RenderPipeline& pipeline, Session session, bool trueColor, const char* what)
{
    RenderPipeline fresh(session);
    fresh.setTrueColor(trueColor);
    const zre::Image depth = *fresh.cachedDepth();
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depth, 0)) << what;
    EXPECT_TRUE(zrtest::imagesNear(pipeline.working(), fresh.working(), 0)) << what;
    EXPECT_TRUE(pipeline.stars() == fresh.stars()) << what;
}

QString otherValue(const zrproj::ParamInfo& info, std::mt19937& random)
{
    if (info.kind == "bool")
        return info.defaultText == "1" ? "0" : "1";
    const double high = info.hasRange ? info.max : 5.0;
    const double value = info.min + (high - info.min) * (0.001 * (random() % 1001));
    return info.kind == "int" ? QString::number(static_cast<int>(value)) : QString::number(value);
}

TEST_P(StarLayer, IsUpToDateAfterEveryChange)
{
    std::mt19937 random(7);
    Session session = GetParam().make();
    RenderPipeline pipeline(session);
    pipeline.cachedDepth();
    ASSERT_GT(pipeline.starsShown(), 10);
    const std::vector<zre::Star> before = pipeline.stars();
    int changed = 0;
    for (const zrproj::ParamInfo& info : zrproj::parameterList()) {
        if (info.kind == "string")
            continue;
        const zre::ZRParams kept = session.params;
        QString error;
        ASSERT_TRUE(zrproj::setParam(session.params, session.outputMode, info.name,
                                     otherValue(info, random), &error))
            << error.toStdString();
        expectUpToDate(pipeline, session, true, info.name.toUtf8().constData());
        changed += pipeline.stars() == before ? 0 : 1;
        session.params = kept;
    }
    EXPECT_GE(changed, 10);
    pipeline.setTrueColor(false);
    expectUpToDate(pipeline, session, false, "colours");
    session.installSource("other.png", zrtest::noise(90, 70, 1, 3), {}, {});
    expectUpToDate(pipeline, session, false, "source");
}

/// Discs about stars, off their centres, one in eight over a whole group.
zre::StarErasure anErasure(const std::vector<zre::Star>& stars, std::mt19937& random)
{
    const auto tenths = [&](int range) { return 0.1 * static_cast<int>(random() % (10 * range)); };
    const zre::Star& star = stars[random() % stars.size()];
    return {star.x + tenths(6) - 3.0, star.y + tenths(6) - 3.0,
            random() % 8 ? 0.5 + tenths(3) : 15.0 + tenths(9), tenths(2),
            static_cast<int>(random() % 3)};
}

TEST_P(StarLayer, EditedErasuresGiveWhatAFreshDetectionGives)
{
    std::mt19937 random(11);
    Session session = GetParam().make();
    RenderPipeline pipeline(session);
    pipeline.cachedDepth();
    const std::vector<zre::Star> untouched = pipeline.stars();
    Erasures& list = session.params.starErasures;
    for (int edit = 0; edit < 40; ++edit) {
        if (list.size() > 4 || (!list.empty() && random() % 3 == 0))
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(random() % list.size()));
        else
            list.push_back(anErasure(untouched, random));
        const std::vector<zre::Star> before = pipeline.stars();
        const int detections = pipeline.levelBuilds().detections;
        pipeline.prepareInputs();
        const bool spliced = pipeline.levelBuilds().detections == detections;
        for (std::size_t i = 0; spliced && i < before.size(); ++i) {
            const zre::Star& star = pipeline.stars()[i];
            EXPECT_TRUE(star.depth == before[i].depth || star.erased || before[i].erased) << i;
        }
        expectUpToDate(pipeline, session, true, qPrintable(QString::number(edit)));
    }
    list.clear();
    pipeline.cachedDepth();
    EXPECT_TRUE(pipeline.stars() == untouched);
    const int updates = pipeline.levelBuilds().erasureUpdates;
    EXPECT_TRUE(session.hasPair() ? updates > 30 : updates == 0) << updates;
}

TEST(ErasureChange, MarksThePixelsOfWhatChanged)
{
    const Erasures before{{5.0, 5.0, 2.0, 1.0, 0}, {20.0, 8.0, 1.0, 0.5, 1}, {9.0, 9.0, 1.0, 0, 0}};
    const Erasures now{before[0], before[1], {29.5, -1.0, 3.0, 0.25, 2}};
    const Erasures changed = changedErasures(before, now);
    EXPECT_EQ(changed, (Erasures{before[2], before[1], now[2]}));
    const auto mask = erasureSearchMask(changed, 30, 12);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 30; ++x) {
            const bool near = std::any_of(changed.begin(), changed.end(), [&](const auto& e) {
                const double half = e.radius + e.feather;
                return std::abs(x - e.x) <= half && std::abs(y - e.y) <= half;
            });
            EXPECT_TRUE(mask[static_cast<std::size_t>(y) * 30 + x] || !near) << x << ' ' << y;
        }
    EXPECT_EQ(mask[6 * 30 + 5], 0); // unchanged, and it gives no light back
    EXPECT_TRUE(erasureSearchMask({{1e300, -1e300, 1e300, 0, 0}}, 0, 0).empty());
}

TEST_P(StarLayer, TheAnchorRunsOnAStarFreeBase)
{
    Session session = GetParam().make();
    session.params.resolveDistance = session.params.manualAnchorOn = true;
    session.params.objectFit = 1.0f;
    RenderPipeline pipeline(session);
    const zre::Image with = *pipeline.cachedDepth();
    EXPECT_TRUE(session.params.sourceIsStarless);
    EXPECT_EQ(session.params.starInputMode, session.hasPair() ? 2 : 0);
    session.params.manualAnchorOn = false;
    EXPECT_FALSE(zrtest::imagesNear(*pipeline.cachedDepth(), with, 0));
    session.params.starSeparationEnabled = false;
    pipeline.prepareInputs();
    EXPECT_FALSE(session.params.sourceIsStarless);
    EXPECT_EQ(pipeline.activeStars(), nullptr);
    EXPECT_EQ(&pipeline.working(), &session.source);
}

TEST_P(StarLayer, LayersAreTheBaseAndTheStarsAndTogetherThePicture)
{
    Session session = GetParam().make();
    RenderPipeline pipeline(session);
    zre::Image starless, stars, both;
    QString ofStarless, ofStars, ofBoth;
    ASSERT_TRUE(pipeline.buildLayerView(kStarlessView, starless, &ofStarless));
    ASSERT_TRUE(pipeline.renderView(kStarsView, {}, stars, &ofStars));
    ASSERT_TRUE(pipeline.renderView(kStarsOverStarlessView, {}, both, &ofBoth));
    EXPECT_FALSE(pipeline.buildLayerView(kDepthView, both, nullptr));
    const int count = pipeline.starsShown();
    EXPECT_TRUE(zrtest::imagesNear(starless, pipeline.working(), 0));
    EXPECT_EQ(ofBoth, QString("Starless + synthetic stars  -  %1 stars").arg(count));
    EXPECT_EQ(ofStarless, session.hasPair()
                              ? QString("De-starred base  -  project starless")
                              : QString("Starless image  -  %1 stars removed").arg(count));
    EXPECT_EQ(ofStars, session.hasPair() ? QString("Detected stars  -  project stars layer")
                                         : QString("Stars only  -  %1 found").arg(count));
    zre::Image sprites(kWidth, kHeight, 1);
    zre::drawStarSprites(pipeline.stars(), sprites, 0, 0, 0, 0, 0, 0, -1, -1, nullptr, 0);
    EXPECT_TRUE(zrtest::imagesNear(stars, session.hasPair() ? session.starsLayer : sprites, 0));
    EXPECT_TRUE(
        zrtest::imagesNear(both, zre::compositeStarlessStars(pipeline.working(), sprites), 1e-6));

    // Where it is not erased the separation may be looked at without being switched on.
    session.params.starSeparationEnabled = false;
    zre::Image again;
    ASSERT_TRUE(pipeline.buildLayerView(kStarlessView, again, nullptr));
    EXPECT_TRUE(zrtest::imagesNear(again, starless, 0));
}

/// What is filled behind stars depends on how far their sprites reach.
TEST(StarlessView, FollowsEveryParameterWhileStarsAreErased)
{
    Session session = photograph();
    session.params.starErasures = {{20.0, 20.0, 5.0, 1.0, 0}};
    RenderPipeline pipeline(session);
    std::mt19937 random(5);
    zre::Image before, after, expected;
    ASSERT_TRUE(pipeline.buildLayerView(kStarlessView, before, nullptr));
    int changed = 0;
    const QStringList names{"thresholdSigma",  "minPeak",       "maxRadius",   "backgroundScale",
                            "fillBehindStars", "starSoftEdges", "starEdgeGlow"};
    for (const zrproj::ParamInfo& info : zrproj::parameterList()) {
        if (!names.contains(info.name))
            continue;
        const zre::ZRParams kept = session.params;
        ASSERT_TRUE(zrproj::setParam(session.params, session.outputMode, info.name,
                                     otherValue(info, random), nullptr));
        RenderPipeline fresh(session);
        ASSERT_TRUE(fresh.buildLayerView(kStarlessView, expected, nullptr));
        ASSERT_TRUE(pipeline.buildLayerView(kStarlessView, after, nullptr));
        EXPECT_TRUE(zrtest::imagesNear(after, expected, 0)) << info.name.toStdString();
        changed += zrtest::imagesNear(after, before, 0) ? 0 : 1;
        session.params = kept;
    }
    EXPECT_EQ(changed, names.size());
}

TEST(StarCounts, FollowMaxStarsAndNameTheDetector)
{
    Session session = photograph();
    RenderPipeline pipeline(session);
    session.params.starMaxRendered = 7;
    session.params.starDepthModel = 3;
    zre::Image out;
    QString status;
    ASSERT_TRUE(pipeline.renderView(kAnaglyphView, {}, out, &status));
    EXPECT_TRUE(status.contains("  -  20.0 px  -  7 stars (classical)  -  ")) << qPrintable(status);
    EXPECT_EQ(pipeline.starDepthText(), "Real depth: no Star catalog found; using random spread");
    session.wcs = {};
    ASSERT_TRUE(pipeline.renderView(kPairView, {}, out, &status));
    EXPECT_TRUE(status.endsWith(" ms  -  stars")) << qPrintable(status);
    EXPECT_EQ(pipeline.starDepthText(),
              "Real depth: image has no astrometric solution; using random spread");
    session.params.starSeparationEnabled = false;
    ASSERT_TRUE(pipeline.renderView(kPairView, {}, out, &status));
    EXPECT_TRUE(status.endsWith(" ms")) << qPrintable(status);
}

struct LearnedStars : testing::Test
{
    ~LearnedStars() override { zre::StarlessAI::setModelPath({}); }

    /// Skips without the runtime.
    bool uses(const std::filesystem::path& model)
    {
        zre::StarlessAI::setModelPath(model.string());
        return zre::StarlessAI::available(nullptr);
    }
    Session session = photograph();
    RenderPipeline pipeline{session};
};

TEST_F(LearnedStars, AFailureIsToldAndTheStarsAreFoundWithoutTheModel)
{
    const auto model = zrtest::scratchFolder() / "no_model.onnx";
    zrtest::writeBytes(model, {1, 2, 3});
    if (!uses(model))
        GTEST_SKIP() << "scripts/bootstrap --with-ai fetches the runtime";
    QStringList said;
    pipeline.setStageReporter([&](int, const QString& text) { said << text; });
    pipeline.prepareStars();
    EXPECT_TRUE(pipeline.starSeparationFailure().startsWith("AI star separation failed: "));
    EXPECT_TRUE(said.contains(pipeline.starSeparationFailure()));
    EXPECT_EQ(pipeline.starDetector(), "classical");
    session.params.thresholdSigma = 9.0f;
    pipeline.prepareStars();
    EXPECT_EQ(said.count("Separating stars from the image"), 1);
}

TEST_F(LearnedStars, OneInferenceServesEveryDetection)
{
    const auto model = zrtest::sample("onnx/standin_stls.onnx");
    if (!model || !uses(*model))
        GTEST_SKIP() << "the runtime or the sample model is not here";
    int inferences = 0;
    pipeline.setStageReporter([&](int percent, const QString& text) {
        inferences +=
            percent == StarStage::kInferencePercent && text == "Separating stars from the image";
    });
    EXPECT_EQ(pipeline.firstPercent(), StarStage::kInferencePercent);
    pipeline.prepareStars();
    EXPECT_EQ(pipeline.starDetector(), "AI");
    EXPECT_EQ(pipeline.starSeparationFailure(), QString());
    zre::Image out;
    QString status;
    ASSERT_TRUE(pipeline.renderView(kStarlessView, {}, out, &status));
    EXPECT_EQ(status, "Starless image  -  AI star separation");
    EXPECT_TRUE(zrtest::imagesNear(out, pipeline.working(), 0));
    ASSERT_TRUE(pipeline.renderView(kStarsView, {}, out, &status));
    const int count = pipeline.starsShown();
    EXPECT_EQ(status, QString("Stars only  -  AI star separation, %1 stars").arg(count));
    const int cues = pipeline.levelBuilds().cues;
    session.params.thresholdSigma = 2.0f;
    session.installExternalDepth("map.png", zrtest::ramp(8, 8));
    session.params.starMaxRendered = 2;
    ASSERT_TRUE(pipeline.renderView(kStarsView, {}, out, &status));
    EXPECT_TRUE(status.startsWith("Stars only  -  AI star separation, 2 of ") &&
                status.endsWith(" stars (Max stars)"))
        << qPrintable(status);
    EXPECT_EQ(pipeline.levelBuilds().detections, 2);
    EXPECT_EQ(pipeline.levelBuilds().cues, cues + 1); // the map's
    EXPECT_EQ(inferences, 1);
}

} // namespace
