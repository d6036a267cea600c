#include "engine/inference/ai_depth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "engine/inference/ort_model.h"
#include "engine/inference/resample_channel.h"

namespace zre {

namespace {

constexpr int kSide = 518;
constexpr std::size_t kRow = kSide;
constexpr std::size_t kPlane = kRow * kRow;
// Means and deviations of the pictures on which such networks are trained (ImageNet): R, G, B.
constexpr std::array kMean{0.485f, 0.456f, 0.406f};
constexpr std::array kStd{0.229f, 0.224f, 0.225f};
constexpr double kLeastRange = 1e-12;

std::string g_modelPath; // empty: the default

/// Never destroyed: at the program's end the library's own statics may already be gone.
ort::Model& model()
{
    static ort::Model& only = *new ort::Model("ZerrithAIDepth");
    return only;
}

/// Where the image lies in the model's square.
struct Placement
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    std::size_t count() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    std::size_t rowStart(int row) const
    {
        return static_cast<std::size_t>(y + row) * kRow + static_cast<std::size_t>(x);
    }
};

Placement place(int width, int height)
{
    const double scale = static_cast<double>(kSide) / std::max(width, height);
    const auto scaled = [scale](int size) {
        return static_cast<int>(std::clamp<long>(std::lround(size * scale), 1, kSide));
    };
    Placement to{0, 0, scaled(width), scaled(height)};
    to.x = (kSide - to.width) / 2;
    to.y = (kSide - to.height) / 2;
    return to;
}

/// The image in a black square, in the units that the network was trained on.
std::vector<float> makeInput(const Image& source, const Placement& to)
{
    std::vector<float> samples(kPlane * kMean.size());
    std::vector<float> scaled(to.count());
    for (std::size_t c = 0; c < kMean.size(); ++c) {
        const int from = source.channels < static_cast<int>(kMean.size()) ? 0 : static_cast<int>(c);
        resampleChannel(source.plane(from), source.width, source.height, scaled.data(), to.width,
                        to.height);
        float* plane = samples.data() + kPlane * c;
        std::fill_n(plane, kPlane, (0.0f - kMean[c]) / kStd[c]);
        const float* value = scaled.data();
        for (int j = 0; j < to.height; ++j)
            for (float* at = plane + to.rowStart(j); at != plane + to.rowStart(j) + to.width; ++at)
                *at = (*value++ - kMean[c]) / kStd[c];
    }
    return samples;
}

/// The placed region of what the model gave, stretched to 0 to 1.
std::vector<float> normalisedRegion(const float* given, const Placement& from)
{
    std::vector<float> region(from.count());
    float* to = region.data();
    for (int j = 0; j < from.height; ++j)
        to = std::transform(given + from.rowStart(j), given + from.rowStart(j) + from.width, to,
                            [](float v) { return std::isfinite(v) ? v : 0.0f; });
    const auto [low, high] = std::minmax_element(region.begin(), region.end());
    const double least = static_cast<double>(*low);
    const double range = static_cast<double>(*high) - least;
    for (float& v : region)
        v = range > kLeastRange ? static_cast<float>((static_cast<double>(v) - least) / range)
                                : 0.5f;
    return region;
}

} // namespace

void AiDepth::setModelPath(const std::string& path)
{
    reset();
    g_modelPath = path;
}

std::string AiDepth::modelPath()
{
    return g_modelPath.empty() ? ortload::exeDir() + "/zr_dmap.onnx" : g_modelPath;
}

void AiDepth::reset()
{
    model().close();
}

bool AiDepth::modelPresent()
{
    return ort::isModelFile(modelPath());
}

bool AiDepth::available(std::string* why)
{
    if (!ensureApi(why))
        return false;
    return modelPresent() || ort::fail(why, "no AI-depth model at " + modelPath());
}

bool AiDepth::compute(const Image& source, int outWidth, int outHeight, Image& out,
                      std::string* err)
{
    if (outWidth <= 0 || outHeight <= 0)
        return ort::fail(err, "bad output size.");
    if (!source.usable())
        return ort::fail(err, "empty source image.");
    if (!ensureApi(err) || !model().open(modelPath(), err))
        return false;
    const Placement placed = place(source.width, source.height);
    std::vector<float> samples = makeInput(source, placed);
    ort::Output output;
    if (!model().run(samples, {1, static_cast<std::int64_t>(kMean.size()), kSide, kSide}, output,
                     err))
        return false;
    if (output.fromLast(0) != kSide || output.fromLast(1) != kSide || !output.holds(kPlane))
        return ort::fail(err, "unexpected AI-depth output shape.");
    const std::vector<float> region = normalisedRegion(output.data, placed);
    Image depth(outWidth, outHeight, 0);
    resampleChannel(region.data(), placed.width, placed.height, depth.plane(0), outWidth,
                    outHeight);
    out = std::move(depth);
    return true;
}

} // namespace zre
