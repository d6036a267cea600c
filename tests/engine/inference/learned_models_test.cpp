#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <gmock/gmock.h>

#include "engine/inference/ai_depth.h"
#include "engine/inference/ort_runtime.h"
#include "engine/inference/starless_ai.h"
#include "tests/support/testkit.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using zre::AiDepth;
using zre::Image;
using zre::StarlessAI;

// Complete model files as hex; input x is a float tensor [1,3,h,w], output y as named.
constexpr const char* kIdentity = // [1,3,h,w]
    "080642040a00100b3a530a100a017812017922084964656e746974791201675a1d0a017812180a16080112120a0208"
    "010a0208030a031201680a03120177621d0a017912180a16080112120a0208010a0208030a031201680a03120177";
constexpr const char* kMean = // the mean of the channels, [1,h,w]
    "080642040a00100b3a6f0a300a0178120179220a5265647563654d65616e2a0b0a04617865734001a001072a0f0a08"
    "6b65657064696d731800a001021201675a1d0a017812180a16080112120a0208010a0208030a031201680a03120177"
    "62190a017912140a120801120e0a0208010a031201680a03120177";
constexpr const char* kMeanPlane = // the mean of the channels, [1,1,h,w]
    "080642040a00100b3a730a300a0178120179220a5265647563654d65616e2a0b0a04617865734001a001072a0f0a08"
    "6b65657064696d731801a001021201675a1d0a017812180a16080112120a0208010a0208030a031201680a03120177"
    "621d0a017912180a16080112120a0208010a0208010a031201680a03120177";
constexpr const char* kShape = // the four sizes of x as 64-bit integers
    "080642040a00100b3a420a0d0a0178120179220553686170651201675a1d0a017812180a16080112120a0208010a02"
    "08030a031201680a03120177620f0a0179120a0a08080712040a020804";

std::string modelFile(const std::string& hex)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(std::uint8_t(std::stoi(hex.substr(i, 2), nullptr, 16)));
    const std::filesystem::path path = zrtest::scratchFolder() / "model.onnx";
    zrtest::writeBytes(path, bytes);
    return path.string();
}

class LearnedModels : public testing::Test
{
protected:
    void SetUp() override
    {
        if (std::string why; !zre::ensureApi(&why))
            GTEST_SKIP() << why << " scripts/bootstrap --with-ai fetches it.";
    }
    void TearDown() override
    {
        StarlessAI::setModelPath({});
        AiDepth::setModelPath({});
    }

    std::string err;
    Image out;
};

TEST_F(LearnedModels, AnIdentityGivesTheImageBack)
{
    StarlessAI::setModelPath(modelFile(kIdentity));
    struct Case
    {
        int width, height, model, tile, overlap, tiles;
    };
    for (const Case& c : {Case{150, 75, 1, 64, 8, 6},
                          {100, 37, 0, 512, 64, 1},
                          {1, 1, 1, 512, 64, 1},
                          {70, 5, 0, 16, 0, 5},
                          {40, 33, 1, 32, 31, 18}}) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        const Image source = zrtest::noise(c.width, c.height, c.model, 11);
        Image expected(c.width, c.height, 1);
        for (int p = 0; p < 3; ++p)
            std::copy_n(source.plane(c.model ? p : 0), source.pixelCount(), expected.plane(p));
        std::vector<std::pair<int, int>> steps;
        ASSERT_TRUE(StarlessAI::run(
            source, out, &err, [&](int done, int total) { steps.emplace_back(done, total); },
            c.tile, c.overlap))
            << err;
        EXPECT_TRUE(zrtest::imagesNear(out, expected, 1e-6));
        ASSERT_EQ(steps.size(), std::size_t(c.tiles));
        EXPECT_EQ(steps.back(), std::pair(c.tiles, c.tiles));
        if (c.tile != 64)
            continue;
        for (int y = 8; y < 56; ++y) // where one tile alone counts in full
            for (int x = 8; x < 56; ++x)
                ASSERT_EQ(out.data[std::size_t(y * 150 + x)],
                          source.data[std::size_t(y * 150 + x)]);
    }
}

TEST_F(LearnedModels, ResultsAreBoundAndNumbers)
{
    StarlessAI::setModelPath(modelFile(kIdentity));
    const float inf = std::numeric_limits<float>::infinity();
    Image source(4, 1, 0);
    source.data = {-0.5f, std::nanf(""), 1.5f, inf};
    ASSERT_TRUE(StarlessAI::run(source, out, &err, {})) << err;
    EXPECT_THAT(std::vector<float>(out.plane(2), out.plane(2) + 4),
                testing::ElementsAre(0.0f, 0.0f, 1.0f, 1.0f));
}

TEST_F(LearnedModels, OnePlaneStandsForThree)
{
    StarlessAI::setModelPath(modelFile(kMeanPlane));
    const Image source = zrtest::noise(90, 50, 1, 12);
    Image expected(90, 50, 1);
    for (std::size_t i = 0; i < source.pixelCount(); ++i)
        for (int p = 0; p < 3; ++p)
            expected.plane(p)[i] =
                (source.plane(0)[i] + source.plane(1)[i] + source.plane(2)[i]) / 3.0f;
    ASSERT_TRUE(StarlessAI::run(source, out, &err, {}, 32, 4)) << err;
    EXPECT_TRUE(zrtest::imagesNear(out, expected, 1e-6));
}

/// 0.2 to 0.7 across in red, 0.1 to 0.9 down in green, 0.4 in blue.
Image slopes(int width, int height)
{
    Image image(width, height, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::size_t i = std::size_t(y * width + x);
            image.plane(0)[i] = float(0.2 + 0.5 * x / (width - 1));
            image.plane(1)[i] = float(0.1 + 0.8 * y / (height - 1));
            image.plane(2)[i] = 0.4f;
        }
    return image;
}

TEST_F(LearnedModels, DepthComesFromThePlacedRegionAlone)
{
    // Planes stay planes through both resamplings, and the darkest pixel is brighter than the black
    // around the image, so that any of that would show.
    struct Case
    {
        int width, height, outWidth, outHeight;
    };
    for (const char* hex : {kMean, kMeanPlane}) {
        AiDepth::setModelPath(modelFile(hex));
        for (const Case& c : {Case{40, 101, 40, 101}, {300, 200, 150, 80}, {9, 700, 30, 35}}) {
            ASSERT_TRUE(
                AiDepth::compute(slopes(c.width, c.height), c.outWidth, c.outHeight, out, &err))
                << err;
            const double red = 0.5 / 0.229;
            const double green = 0.8 / 0.224;
            Image expected(c.outWidth, c.outHeight, 0);
            for (int y = 0; y < c.outHeight; ++y)
                for (int x = 0; x < c.outWidth; ++x)
                    expected.data[std::size_t(y * c.outWidth + x)] =
                        float((red * x / (c.outWidth - 1) + green * y / (c.outHeight - 1)) /
                              (red + green));
            EXPECT_TRUE(zrtest::imagesNear(out, expected, 2e-5)) << c.width << "x" << c.height;
        }
    }
}

TEST_F(LearnedModels, DepthWithoutDifferencesLiesInTheMiddle)
{
    AiDepth::setModelPath(modelFile(kMean));
    Image source(33, 20, 0);
    source.data.assign(source.data.size(), 0.3f);
    Image middle(5, 4, 0);
    middle.data.assign(20, 0.5f);
    ASSERT_TRUE(AiDepth::compute(source, 5, 4, out, &err)) << err;
    EXPECT_TRUE(zrtest::imagesNear(out, middle, 0));
    source.data.assign(source.data.size(), std::nanf(""));
    ASSERT_TRUE(AiDepth::compute(source, 5, 4, out, &err)) << err;
    EXPECT_TRUE(zrtest::imagesNear(out, middle, 0));
}

TEST_F(LearnedModels, WhatCannotBeUsedIsToldAndChangesNothing)
{
    const Image source = zrtest::noise(20, 10, 1, 9);
    const Image before = zrtest::noise(3, 3, 0, 2);
    const auto separate = [&](const std::string& path, const Image& from) {
        StarlessAI::setModelPath(path);
        out = before;
        EXPECT_FALSE(StarlessAI::run(from, out, &err, {}));
        EXPECT_FALSE(StarlessAI::run(from, out, nullptr, {}));
        EXPECT_TRUE(zrtest::imagesNear(out, before, 0));
        return err;
    };
    const auto estimate = [&](const std::string& path, const Image& from, int width = 4) {
        AiDepth::setModelPath(path);
        out = before;
        EXPECT_FALSE(AiDepth::compute(from, width, 4, out, &err));
        EXPECT_TRUE(zrtest::imagesNear(out, before, 0));
        return err;
    };
    EXPECT_EQ(separate(modelFile(kShape), source), "unexpected model output shape.");
    EXPECT_EQ(estimate(modelFile(kShape), source), "unexpected AI-depth output shape.");
    EXPECT_EQ(separate(modelFile(kIdentity), Image()), "empty source image.");
    EXPECT_EQ(estimate(modelFile(kMean), Image()), "empty source image.");
    EXPECT_EQ(estimate(modelFile(kMean), source, 0), "bad output size.");
    EXPECT_THAT(separate(modelFile("00ff00ff"), source), StartsWith("ONNX: Load model from"));
    EXPECT_THAT(estimate(modelFile("00ff00ff"), source), HasSubstr("Protobuf parsing failed."));

    const std::string missing = (zrtest::scratchFolder() / "none.onnx").string();
    EXPECT_EQ(separate(missing, source), "model file not found: " + missing);
    EXPECT_EQ(estimate(missing, source), "model file not found: " + missing);
    EXPECT_FALSE(StarlessAI::available(&err));
    EXPECT_EQ(err, "no model file at " + missing);
    EXPECT_FALSE(AiDepth::available(&err));
    EXPECT_EQ(err, "no AI-depth model at " + missing);
    EXPECT_FALSE(AiDepth::modelPresent());

    AiDepth::setModelPath(zrtest::scratchFolder().string());
    EXPECT_FALSE(AiDepth::modelPresent()) << "a folder is no model";
    AiDepth::setModelPath(modelFile(kMean));
    EXPECT_TRUE(AiDepth::available(&err));
}

} // namespace
