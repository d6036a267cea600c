#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "engine/demo/demo_scene.h"
#include "engine/image/blur.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/heal_starless.h"
#include "engine/stars/star_list.h"
#include "tests/engine/stars/star_quality.h"

namespace {

/// Leaves the green plane of the picture where ZR_BENCH_PLANE says, for a peer that runs as a
/// program of its own: width and height as text in one line, then the samples.
void handToPeer(const zre::Image& picture)
{
    const char* path = std::getenv("ZR_BENCH_PLANE");
    if (!path)
        return;
    std::ofstream out(path, std::ios::binary);
    out << picture.width << ' ' << picture.height << '\n';
    out.write(reinterpret_cast<const char*>(picture.plane(1)),
              static_cast<std::streamsize>(picture.pixelCount() * sizeof(float)));
}

/// The built-in scene with one star to 1200 pixels, and outputs that stand before the clock runs.
struct Bench
{
    zre::DemoScene scene = zre::makeDemoScene({.width = benchWidth(),
                                               .height = benchHeight(),
                                               .stars = benchWidth() * benchHeight() / 1200});
    std::vector<zre::Star> stars;
    zre::Image starless = scene.picture;

    Bench() { handToPeer(scene.picture); }

    static Bench& instance()
    {
        static Bench bench;
        return bench;
    }
};

/// Shares found and errors left over, a row of the table each.
void countQuality(benchmark::State& state, const zrtest::StarQuality& quality)
{
    for (const zrtest::StarClass& c : quality.classes) {
        const std::string from =
            "quality:peak " + std::to_string(c.fromPeak).substr(0, 3) + " up, ";
        state.counters[from + "found"] = c.foundShare();
        state.counters[from + "error of the picture"] = c.errorBefore();
        state.counters[from + "error of the starless"] = c.errorAfter();
    }
    state.counters["quality:stars found"] = quality.detected;
    state.counters["quality:share of false ones"] = quality.falseShare();
    state.counters["quality:error of the starless off the stars"] = quality.errorElsewhere;
}

void detectstars_ours(benchmark::State& state)
{
    Bench& b = Bench::instance();
    for (auto _ : state) {
        zre::detectStars(b.scene.picture, b.stars, b.starless, {}, nullptr);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
    countQuality(state, zrtest::starQuality(b.scene, b.stars, b.starless));
}

/// The blur of three channels that detection cannot do without.
void detectstars_blur(benchmark::State& state)
{
    Bench& b = Bench::instance();
    for (auto _ : state) {
        zre::gaussianBlur(b.scene.picture, b.starless, 6.0f, 0.01f, {});
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
}

/// What the better base costs on top of detection.
void healstarless_ours(benchmark::State& state)
{
    Bench& b = Bench::instance();
    zre::detectStars(b.scene.picture, b.stars, b.starless, {}, nullptr);
    for (auto _ : state) {
        zre::healStarless(b.scene.picture, b.stars, b.starless);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
    countQuality(state, zrtest::starQuality(b.scene, b.stars, b.starless));
}

/// The stars of the scene as a layer of their own, and an erasure over one of the brightest.
struct LayerBench
{
    Bench& bench = Bench::instance();
    zre::Image layer = bench.scene.picture;
    zre::StarDetectParams params;
    std::vector<zre::Star> stars;
    std::vector<zre::StarErasure> erasures;
    std::vector<std::uint8_t> mask;
    zre::LayerStats stats;

    LayerBench()
    {
        for (std::size_t i = 0; i < layer.data.size(); ++i)
            layer.data[i] = std::max(0.0f, layer.data[i] - bench.scene.starless.data[i]);
        params.splitRatio = 0.6f;
        zre::detectStarsFromResidual(layer, stars, params, &bench.scene.starless, nullptr, nullptr,
                                     nullptr);
        const auto brighter = [](const zre::Star& a, const zre::Star& b) {
            return a.peak < b.peak;
        };
        const zre::Star& star = *std::max_element(stars.begin(), stars.end(), brighter);
        erasures = {{star.x + 3.0, star.y, 4.0, 1.0, 0}};
        mask.assign(layer.pixelCount(), 0);
        for (int y = -6; y <= 6; ++y)
            for (int x = -6; x <= 6; ++x) {
                const int px = std::clamp(static_cast<int>(star.x) + 3 + x, 0, layer.width - 1);
                const int py = std::clamp(static_cast<int>(star.y) + y, 0, layer.height - 1);
                mask[static_cast<std::size_t>(py) * static_cast<std::size_t>(layer.width) +
                     static_cast<std::size_t>(px)] = 1;
            }
        stats = zre::starsLayerStats(layer);
    }

    static LayerBench& instance()
    {
        static LayerBench bench;
        return bench;
    }
};

void erasure_ours(benchmark::State& state)
{
    LayerBench& b = LayerBench::instance();
    std::vector<zre::Star> fresh;
    std::vector<zre::Star> stars = b.stars;
    std::size_t replaced = 0;
    for (auto _ : state) {
        zre::detectStarsFromResidual(b.layer, fresh, b.params, &b.bench.scene.starless, &b.erasures,
                                     nullptr, &b.mask, &b.stats);
        replaced = zre::spliceStarsByCentroid(stars, fresh);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
    std::vector<zre::Star> whole;
    zre::detectStarsFromResidual(b.layer, whole, b.params, &b.bench.scene.starless, &b.erasures,
                                 nullptr, nullptr);
    state.counters["quality:stars replaced"] = static_cast<double>(replaced);
    state.counters["quality:stars that differ from a search of the whole"] =
        static_cast<double>(std::count_if(whole.begin(), whole.end(), [&](const zre::Star& star) {
            return std::find(stars.begin(), stars.end(), star) == stars.end();
        }));
}

void erasure_scratch(benchmark::State& state)
{
    LayerBench& b = LayerBench::instance();
    std::vector<zre::Star> fresh;
    for (auto _ : state) {
        zre::detectStarsFromResidual(b.layer, fresh, b.params, &b.bench.scene.starless, &b.erasures,
                                     nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
}

BENCHMARK(erasure_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(erasure_scratch)->Unit(benchmark::kMillisecond);
BENCHMARK(detectstars_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(detectstars_blur)->Unit(benchmark::kMillisecond);
BENCHMARK(healstarless_ours)->Unit(benchmark::kMillisecond);

} // namespace
