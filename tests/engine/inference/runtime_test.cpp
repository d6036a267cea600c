#include "engine/inference/ort_runtime.h"

#include <functional>

#include <gtest/gtest.h>

#include "engine/inference/ai_depth.h"
#include "engine/inference/starless_ai.h"
#include "tests/engine/inference/pretended_runtime.h"
#include "tests/support/testkit.h"

namespace {

/// In a process of its own: 0 when two calls gave `message` and the library was asked once.
[[noreturn]] void expectNoApi(int answer, const std::string& message)
{
    pretendAnswer(answer);
    std::string first;
    std::string second;
    const bool any = zre::ensureApi(&first) || zre::ensureApi(&second);
    std::exit(!any && first == message && second == message && pretendAsked() == 1 ? 0 : 1);
}

TEST(RuntimeDeathTest, SaysWhyALibraryIsOfNoUse)
{
    EXPECT_EXIT(expectNoApi(1, "ONNX Runtime has no valid OrtGetApiBase entry point."),
                testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(expectNoApi(2, "ONNX Runtime 0.7.1 implements no API between 11 and 20, which this "
                               "build needs."),
                testing::ExitedWithCode(0), "^$");
}

TEST(RuntimeDeathTest, TakesTheNewestInterfaceAndSaysSoOnce)
{
    const auto load = [](int answer) {
        pretendAnswer(answer);
        std::exit(zre::ensureApi(nullptr) && zre::ensureApi(nullptr) ? 0 : 1);
    };
    const std::string line = "^Zerrith: AI star separation using ONNX Runtime 0.7.1 \\(API ";
    EXPECT_EXIT(load(0), testing::ExitedWithCode(0), line + "20\\)\n$");
    EXPECT_EXIT(load(3), testing::ExitedWithCode(0), line + "14\\)\n$");
}

std::string pretendedModel()
{
    const std::filesystem::path path = zrtest::scratchFolder() / "model.onnx";
    zrtest::writeBytes(path, {1});
    return path.string();
}

/// Lets every call of one inference fail in its turn. A session costs three objects: itself, its
/// environment and its options.
void failEverywhere(const std::function<bool(zre::Image&, std::string*)>& infer,
                    const std::function<void()>& reset)
{
    const zre::Image before = zrtest::noise(3, 3, 0, 2);
    int failures = 0;
    for (int call = 0;; ++call) {
        SCOPED_TRACE(call);
        zre::Image out = before;
        std::string err;
        pretendFailure(call);
        const bool done = infer(out, &err);
        EXPECT_TRUE(pretendLive() == 0 || pretendLive() == 3);
        reset();
        EXPECT_EQ(pretendLive(), 0);
        const int slot = pretendFailedSlot();
        if (slot < 0) {
            EXPECT_TRUE(done) << err;
            break;
        }
        ++failures;
        if (slot == 76) // giving back a name: nothing depends on it
            continue;
        EXPECT_FALSE(done) << "slot " << slot;
        EXPECT_EQ(err, "ONNX: as told.");
        EXPECT_TRUE(zrtest::imagesNear(out, before, 0));
    }
    EXPECT_GE(failures, 19);
}

TEST(Runtime, EveryObjectIsReleasedOnEveryRoad)
{
    const zre::Image source = zrtest::noise(40, 20, 1, 3);
    zre::StarlessAI::setModelPath(pretendedModel());
    failEverywhere(
        [&](zre::Image& out, std::string* err) {
            return zre::StarlessAI::run(source, out, err, {}, 32, 4);
        },
        zre::StarlessAI::reset);
    zre::AiDepth::setModelPath(pretendedModel());
    failEverywhere([&](zre::Image& out,
                       std::string* err) { return zre::AiDepth::compute(source, 8, 6, out, err); },
                   zre::AiDepth::reset);
}

TEST(Runtime, ASessionLastsUntilThePathIsSet)
{
    const zre::Image source = zrtest::noise(20, 10, 0, 3);
    zre::Image out;
    std::string err;
    pretendFailure(-1);
    zre::StarlessAI::setModelPath(pretendedModel());
    ASSERT_TRUE(zre::StarlessAI::run(source, out, &err, {})) << err;
    pretendFailure(0); // the first call of a run that opens nothing is for its memory
    EXPECT_FALSE(zre::StarlessAI::run(source, out, &err, {}));
    EXPECT_EQ(pretendFailedSlot(), 69);
    EXPECT_EQ(pretendLive(), 3);
    zre::StarlessAI::setModelPath(pretendedModel());
    EXPECT_EQ(pretendLive(), 0);
}

} // namespace
