#include "app/session/render_pipeline.h"

#include <vector>

#include "engine/depth/depth_map.h"
#include "engine/image/raster.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/views.h"
#include "tests/support/testkit.h"

namespace {

Session sessionOf(zre::Image image)
{
    Session session;
    session.installSource("noise.png", std::move(image), {}, {});
    return session;
}

/// What a session's depth map is by the engine alone.
zre::Image depthOf(const Session& session)
{
    zre::DepthInputs inputs;
    if (session.externalDepth.usable())
        inputs.externalDepth = &session.externalDepth;
    zre::Image depth;
    zre::buildDepthMap(session.source, session.params, inputs, depth, {});
    return depth;
}

struct Rebuild
{
    const char* what;
    void (*change)(Session&);
    int cues;
    int anchor;
    int final;
    int detections = 0;
};

class DepthLevels : public testing::TestWithParam<Rebuild>
{
};

TEST_P(DepthLevels, RebuildOnlyWhatTheChangeReaches)
{
    Session session = sessionOf(zrtest::noise(24, 16, 1, 3));
    session.params.resolveDistance = true;
    session.params.objectFit = 0.4f;
    RenderPipeline pipeline(session);
    pipeline.cachedDepth();
    const RenderPipeline::LevelBuilds before = pipeline.levelBuilds();

    GetParam().change(session);
    pipeline.cachedDepth();
    pipeline.cachedDepth();

    const RenderPipeline::LevelBuilds after = pipeline.levelBuilds();
    EXPECT_EQ(after.cues - before.cues, GetParam().cues);
    EXPECT_EQ(after.anchor - before.anchor, GetParam().anchor);
    EXPECT_EQ(after.final - before.final, GetParam().final);
    EXPECT_EQ(after.detections - before.detections, GetParam().detections);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, DepthLevels,
    testing::Values(
        Rebuild{"nothing", [](Session&) {}, 0, 0, 0},
        Rebuild{"parallax", [](Session& s) { s.params.parallaxAmount = 3.0f; }, 0, 0, 0},
        Rebuild{"grade", [](Session& s) { s.params.postGamma = 2.0f; }, 0, 0, 0},
        Rebuild{"disabledRows", [](Session& s) { s.params.colorDepthWeight = 0.5f; }, 0, 0, 0},
        Rebuild{"mapThatIsNotLoaded",
                [](Session& s) {
                    s.params.depthMapEnabled = true;
                    s.params.depthMapBlend = 1.0f;
                },
                0, 0, 0},
        Rebuild{"objectFit", [](Session& s) { s.params.objectFit = 0.7f; }, 0, 1, 1},
        Rebuild{"smoothness", [](Session& s) { s.params.smoothness = 3.0f; }, 1, 1, 1},
        Rebuild{
            "source",
            [](Session& s) { s.installSource("other.png", zrtest::noise(24, 16, 1, 4), {}, {}); },
            1, 1, 1, 1},
        Rebuild{"depthMap", [](Session& s) { s.installExternalDepth("m", zrtest::ramp(4, 4)); }, 1,
                1, 1},
        Rebuild{"detection", [](Session& s) { s.params.thresholdSigma = 3.0f; }, 1, 1, 1, 1},
        Rebuild{"spritesThatAreFilledBehind", [](Session& s) { s.params.starEdgeGlow = 2.0f; }, 1,
                1, 1, 1},
        Rebuild{"companionsOfALayer", [](Session& s) { s.params.starCompanionWipe = 0.5f; }, 0, 0,
                0},
        Rebuild{"starDepths",
                [](Session& s) {
                    s.params.starPlane = s.params.starFloatation = s.params.starPop = 0.3f;
                    s.params.starDepthRange = 0.1f;
                    s.params.starDepthModel = s.params.starMaxRendered = 1;
                },
                0, 0, 0},
        Rebuild{"noStars", [](Session& s) { s.params.starSeparationEnabled = false; }, 1, 1, 1}),
    [](const auto& row) { return row.param.what; });

TEST(RenderPipeline, AnotherSourceOrMapNeverShowsTheOldDepth)
{
    Session session = sessionOf(zrtest::noise(20, 12, 1, 1));
    session.params.depthMapEnabled = true;
    session.params.depthMapBlend = 0.5f;
    RenderPipeline pipeline(session);
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depthOf(session), 0));
    session.installSource("b.png", zrtest::noise(12, 20, 1, 2), {}, {});
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depthOf(session), 0));
    session.installExternalDepth("map.png", zrtest::ramp(7, 5));
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depthOf(session), 0));
    session.installExternalDepth("map.png", zrtest::noise(7, 5, 0, 9));
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depthOf(session), 0));
    session.installExternalDepth({}, {});
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), depthOf(session), 0));
}

TEST(RenderPipeline, ViewsAreWhatTheEngineRendersFromTheSameDepth)
{
    for (const int model : {0, 1}) {
        Session session = sessionOf(zrtest::noise(33, 17, model, 5));
        session.params.swapEyes = model == 1;
        session.params.postHue = 20.0f;
        RenderPipeline pipeline(session);
        const zre::Image depth = depthOf(session);
        zre::Image view;
        zre::Image expected;

        ASSERT_TRUE(pipeline.renderView(0, {}, view, nullptr));
        EXPECT_TRUE(zrtest::imagesNear(view, session.source, 0));
        ASSERT_TRUE(pipeline.renderView(1, {}, view, nullptr));
        EXPECT_TRUE(zrtest::imagesNear(view, depth, 0));
        ASSERT_TRUE(pipeline.renderView(2, {0.9, 1.0, 0.8}, view, nullptr));
        zre::renderAnaglyph(session.source, depth, session.params, expected, nullptr, {}, nullptr,
                            nullptr, 0.9, 1.0, 0.8);
        EXPECT_TRUE(zrtest::imagesNear(view, expected, 0));
        ASSERT_TRUE(pipeline.renderView(3, {}, view, nullptr));
        zre::renderSideBySide(session.source, depth, session.params, expected, nullptr, {}, nullptr,
                              nullptr);
        EXPECT_TRUE(zrtest::imagesNear(view, expected, 0));
    }
}

TEST(RenderPipeline, WiggleSwingsAboutTheMedianOfTheDepthAsItNowIs)
{
    Session session = sessionOf(zrtest::noise(40, 20, 1, 6));
    RenderPipeline pipeline(session);
    for (const float gamma : {1.0f, 3.0f}) { // moves the median
        session.params.depthGamma = gamma;
        for (const bool automatic : {true, false}) {
            session.params.autoConvergence = automatic;
            const zre::Image depth = depthOf(session);
            const double convergence = automatic ? zre::medianValue(depth) : 0.5;
            zre::Image frame;
            zre::Image expected;
            ASSERT_TRUE(pipeline.renderWiggle(7, frame));
            zre::renderWiggleFrame(session.source, depth, 7, 30, 3.0, convergence, session.params,
                                   expected, nullptr, nullptr, nullptr, 0.0);
            EXPECT_TRUE(zrtest::imagesNear(frame, expected, 0)) << gamma << automatic;
        }
    }
}

TEST(RenderPipeline, WiggleAtOneEyeIsThatEyeOfTheStereoPair)
{
    Session session = sessionOf(zrtest::noise(40, 20, 1, 8));
    session.params.wiggleAmplitude = 1.0f;
    session.params.wiggleFrames = 4; // frame 1 stands at the sine's top
    RenderPipeline pipeline(session);
    zre::Image frame;
    ASSERT_TRUE(pipeline.renderWiggle(1, frame));
    zre::Image left;
    zre::Image right;
    zre::renderEyes(session.source, *pipeline.cachedDepth(), session.params, left, right, nullptr,
                    {}, nullptr, nullptr);
    EXPECT_TRUE(zrtest::imagesNear(frame, left, 0));
}

TEST(RenderPipeline, WithoutSourceOrViewTheOutputsStay)
{
    Session empty;
    RenderPipeline pipeline(empty);
    const zre::Image before = zrtest::noise(5, 4, 0, 1);
    zre::Image out = before;
    QString status = "kept";
    EXPECT_EQ(pipeline.cachedDepth(), nullptr);
    EXPECT_FALSE(pipeline.renderView(1, {}, out, &status));
    EXPECT_FALSE(pipeline.renderWiggle(0, out));
    pipeline.computeCleanDepth(out);

    Session session = sessionOf(zrtest::noise(9, 9, 1, 2));
    RenderPipeline withSource(session);
    EXPECT_FALSE(withSource.renderView(7, {}, out, &status));
    EXPECT_FALSE(withSource.renderView(-1, {}, out, &status));
    EXPECT_TRUE(zrtest::imagesNear(out, before, 0));
    EXPECT_EQ(status, "kept");
}

TEST(RenderPipeline, ReportedPercentOnlyRises)
{
    Session session = sessionOf(zrtest::noise(70, 130, 1, 2));
    RenderPipeline pipeline(session);
    std::vector<int> percents;
    QStringList texts;
    pipeline.setStageReporter([&](int percent, const QString& text) {
        percents.push_back(percent);
        texts << text;
    });
    zre::Image view;
    ASSERT_TRUE(pipeline.renderView(2, {}, view, nullptr));
    ASSERT_GT(percents.size(), 4u);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(percents.front(), pipeline.firstPercent());
    EXPECT_LE(percents.back(), 100);
    EXPECT_GT(percents.back(), 90);
    EXPECT_EQ(texts.first(), "Detecting stars...");
    EXPECT_TRUE(texts.contains("Building depth map..."));
    EXPECT_TRUE(texts.contains("Smoothing"));
}

} // namespace
