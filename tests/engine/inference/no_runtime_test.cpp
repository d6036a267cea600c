#include <gtest/gtest.h>

#include "engine/inference/ai_depth.h"
#include "engine/inference/ort_runtime.h"
#include "engine/inference/starless_ai.h"
#include "tests/support/testkit.h"

namespace {

const std::string kMissing = "libonnxruntime.so could not be loaded (place it next to the app).";

TEST(NoRuntime, IsToldAndNothingElseHappens)
{
    if (zre::ensureApi(nullptr))
        GTEST_SKIP() << "this machine has a runtime for all programs";
    const std::filesystem::path beside = std::filesystem::canonical("/proc/self/exe").parent_path();
    EXPECT_EQ(zre::ortload::exeDir(), beside.string());
    EXPECT_EQ(zre::StarlessAI::modelPath(), (beside / "zr_stls.onnx").string());
    EXPECT_EQ(zre::AiDepth::modelPath(), (beside / "zr_dmap.onnx").string());
    EXPECT_FALSE(zre::AiDepth::modelPresent());

    for (int attempt = 0; attempt < 2; ++attempt) {
        std::string why;
        EXPECT_FALSE(zre::StarlessAI::available(&why));
        EXPECT_EQ(why, kMissing);
        why.clear();
        EXPECT_FALSE(zre::AiDepth::available(&why));
        EXPECT_EQ(why, kMissing);
    }
    const zre::Image source = zrtest::noise(4, 3, 1, 1);
    zre::Image out = source;
    std::string err;
    EXPECT_FALSE(zre::StarlessAI::run(source, out, &err, {}));
    EXPECT_EQ(err, kMissing);
    EXPECT_FALSE(zre::AiDepth::compute(source, 4, 3, out, &err));
    EXPECT_EQ(err, kMissing);
    EXPECT_FALSE(zre::AiDepth::compute(source, 4, 3, out, nullptr));
    EXPECT_TRUE(zrtest::imagesNear(out, source, 0));
}

} // namespace
