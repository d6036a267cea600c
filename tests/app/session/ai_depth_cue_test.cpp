#include "app/session/ai_depth_cue.h"

#include "app/session/render_pipeline.h"
#include "engine/inference/ai_depth.h"
#include "tests/support/testkit.h"

namespace {

/// A picture whose only cue is the learned one.
struct AiDepthCueTest : testing::Test
{
    std::filesystem::path model = zrtest::scratchFolder() / "model.onnx";
    Session session;
    RenderPipeline pipeline{session};
    QStringList said;

    AiDepthCueTest()
    {
        session.installSource("a.png", zrtest::noise(24, 16, 1, 4), {}, {});
        session.params.luminanceWeight = session.params.structureWeight = 0.0f;
        session.params.smoothness = 0.0f;
        session.params.aiDepthWeight = 1.0f;
        pipeline.setStageReporter([this](int, const QString& text) { said << text; });
        zre::AiDepth::setModelPath(model.string());
    }
    ~AiDepthCueTest() override
    {
        std::filesystem::remove(model);
        zre::AiDepth::setModelPath({});
    }
};

TEST_F(AiDepthCueTest, CountsOnlyWithAModelAWeightAndImageDepth)
{
    const QString without = pipeline.depthCacheKey(false, false);
    EXPECT_FALSE(without.contains("|A|"));
    pipeline.cachedDepth();
    EXPECT_FALSE(said.contains("Running AI depth..."));

    zrtest::writeBytes(model, {1, 2, 3});
    EXPECT_TRUE(pipeline.depthCacheKey(false, false).contains("|A|1|"));
    session.params.luminanceEnabled = false;
    EXPECT_FALSE(pipeline.depthCacheKey(false, false).contains("|A|"));
    session.params.luminanceEnabled = true;
    session.params.aiDepthWeight = 0.0f;
    EXPECT_EQ(pipeline.depthCacheKey(false, false), without);
}

TEST_F(AiDepthCueTest, AFailureIsToldOnceAndTheChainGoesOn)
{
    zrtest::writeBytes(model, {1, 2, 3});
    ASSERT_TRUE(pipeline.cachedDepth());
    EXPECT_EQ(said.count("Running AI depth..."), 1);
    const QString failure = pipeline.aiDepthFailure();
    EXPECT_TRUE(failure.startsWith("AI depth failed: ") && failure.size() > 20)
        << failure.toStdString();
    EXPECT_TRUE(said.contains(failure));
    session.params.smoothness = 2.0f;
    pipeline.cachedDepth();
    EXPECT_EQ(said.count("Running AI depth..."), 1);
    EXPECT_EQ(pipeline.aiDepthFailure(), failure);
    session.params.aiDepthWeight = 0.0f;
    pipeline.cachedDepth();
    EXPECT_EQ(pipeline.aiDepthFailure(), QString());
}

TEST_F(AiDepthCueTest, TheModelsDepthBecomesTheDepth)
{
    // One channel: the mean of red, green and blue.
    zrtest::writeBytes(model, [] {
        const QByteArray bytes = QByteArray::fromHex(
            "080642040a00100b3a730a300a0178120179220a5265647563654d65616e2a0b0a04617865734001a001"
            "072a0f0a086b65657064696d731801a001021201675a1d0a017812180a16080112120a0208010a020803"
            "0a031201680a03120177621d0a017912180a16080112120a0208010a0208010a031201680a03120177");
        return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    }());
    if (std::string why; !zre::AiDepth::available(&why))
        GTEST_SKIP() << why << " scripts/bootstrap --with-ai fetches it.";
    zre::Image ramp = zrtest::ramp(24, 16);
    session.installSource("b.png", ramp, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(*pipeline.cachedDepth(), ramp, 1e-4));
    EXPECT_EQ(said.count("Running AI depth..."), 1);
    EXPECT_EQ(pipeline.aiDepthFailure(), QString());

    session.params.invertDepth = true; // rebuilds the cues, not what the model saw
    pipeline.cachedDepth();
    EXPECT_EQ(said.count("Running AI depth..."), 1);
    for (float& v : ramp.data)
        v = 1.0f - v;
    session.installSource("c.png", ramp, {}, {});
    pipeline.cachedDepth();
    EXPECT_EQ(said.count("Running AI depth..."), 2);
}

} // namespace
