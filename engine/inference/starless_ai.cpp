#include "engine/inference/starless_ai.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/inference/ort_model.h"
#include "engine/inference/tile_plan.h"

namespace zre {

namespace {

constexpr int kChannels = 3;
constexpr std::int64_t kSizeStep = 16; // the networks halve a side up to four times
constexpr float kLeastWeight = 1e-6f;

std::string g_modelPath; // empty: the default

/// Never destroyed: at the program's end the library's own statics may already be gone.
ort::Model& model()
{
    static ort::Model& only = *new ort::Model("Zerrith");
    return only;
}

/// Where a tile lies, and its size as the model gets it.
struct Tile
{
    TileSpan across;
    TileSpan down;

    std::int64_t paddedWidth() const { return padded(across.size); }
    std::int64_t paddedHeight() const { return padded(down.size); }
    std::size_t paddedCount() const
    {
        return static_cast<std::size_t>(paddedWidth()) * static_cast<std::size_t>(paddedHeight());
    }

private:
    static std::int64_t padded(int size) { return (size + kSizeStep - 1) & ~(kSizeStep - 1); }
};

/// The weighted sum of what the tiles gave, and the sum of the weights.
struct Blend
{
    Image sum;
    std::vector<float> weight;
};

std::size_t at(const Image& image, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
           static_cast<std::size_t>(x);
}

void fillInput(const Image& source, const Tile& tile, std::vector<float>& samples)
{
    const std::size_t stride = static_cast<std::size_t>(tile.paddedWidth());
    samples.assign(tile.paddedCount() * kChannels, 0.0f);
    for (int c = 0; c < kChannels; ++c) {
        const float* plane = source.plane(source.channels < kChannels ? 0 : c);
        float* row = samples.data() + tile.paddedCount() * static_cast<std::size_t>(c);
        for (int j = 0; j < tile.down.size; ++j, row += stride)
            std::copy_n(plane + at(source, tile.across.origin, tile.down.origin + j),
                        tile.across.size, row);
    }
}

/// Whether three planes of the tile's padded size can be read from `output`, or one that stands
/// for all three.
bool hasExpectedShape(const ort::Output& output, const Tile& tile, bool& onePlane)
{
    const std::int64_t channels = output.fromLast(2);
    onePlane = channels < kChannels;
    return channels > 0 && output.fromLast(1) == tile.paddedHeight() &&
           output.fromLast(0) == tile.paddedWidth() &&
           output.holds(tile.paddedCount() * (onePlane ? 1U : kChannels));
}

void addTile(const ort::Output& output, const Tile& tile, bool onePlane, int overlap, Blend& blend)
{
    const std::vector<float> across = tileWeights(tile.across.size, overlap);
    const std::vector<float> down = tileWeights(tile.down.size, overlap);
    for (int j = 0; j < tile.down.size; ++j) {
        const std::size_t start = at(blend.sum, tile.across.origin, tile.down.origin + j);
        const std::size_t row = static_cast<std::size_t>(j);
        for (std::size_t i = 0; i < across.size(); ++i)
            blend.weight[start + i] += down[row] * across[i];
        for (int c = 0; c < kChannels; ++c) {
            const float* given = output.data +
                                 tile.paddedCount() * static_cast<std::size_t>(onePlane ? 0 : c) +
                                 row * static_cast<std::size_t>(tile.paddedWidth());
            float* sum = blend.sum.plane(c) + start;
            for (std::size_t i = 0; i < across.size(); ++i)
                sum[i] += down[row] * across[i] * (std::isnan(given[i]) ? 0.0f : given[i]);
        }
    }
}

void finish(Blend& blend)
{
    for (int c = 0; c < kChannels; ++c) {
        float* sum = blend.sum.plane(c);
        for (std::size_t i = 0; i < blend.weight.size(); ++i) {
            const float v = blend.weight[i] > kLeastWeight ? sum[i] / blend.weight[i] : sum[i];
            sum[i] = v > 0.0f ? std::min(v, 1.0f) : 0.0f; // not a number becomes 0 too
        }
    }
}

} // namespace

void StarlessAI::setModelPath(const std::string& path)
{
    reset();
    g_modelPath = path;
}

std::string StarlessAI::modelPath()
{
    return g_modelPath.empty() ? ortload::exeDir() + "/zr_stls.onnx" : g_modelPath;
}

void StarlessAI::reset()
{
    model().close();
}

bool StarlessAI::available(std::string* why)
{
    if (!ensureApi(why))
        return false;
    return ort::isModelFile(modelPath()) || ort::fail(why, "no model file at " + modelPath());
}

bool StarlessAI::run(const Image& source, Image& out, std::string* err,
                     const TileProgress& progress, int tile, int overlap)
{
    if (!source.usable())
        return ort::fail(err, "empty source image.");
    if (!ensureApi(err) || !model().open(modelPath(), err))
        return false;
    const std::vector<TileSpan> rows = planTiles(source.height, tile, overlap);
    const std::vector<TileSpan> columns = planTiles(source.width, tile, overlap);
    const int total = static_cast<int>(rows.size() * columns.size());
    Blend blend{Image(source.width, source.height, 1),
                std::vector<float>(source.pixelCount(), 0.0f)};
    std::vector<float> samples;
    int done = 0;
    for (const TileSpan& down : rows)
        for (const TileSpan& across : columns) {
            const Tile here{across, down};
            fillInput(source, here, samples);
            ort::Output output;
            if (!model().run(samples, {1, kChannels, here.paddedHeight(), here.paddedWidth()},
                             output, err))
                return false;
            bool onePlane = false;
            if (!hasExpectedShape(output, here, onePlane))
                return ort::fail(err, "unexpected model output shape.");
            addTile(output, here, onePlane, overlap, blend);
            if (progress)
                progress(++done, total);
        }
    finish(blend);
    out = std::move(blend.sum);
    return true;
}

} // namespace zre
