#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "engine/demo/demo_scene.h"
#include "engine/image/blur.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/heal_starless.h"
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

BENCHMARK(detectstars_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(detectstars_blur)->Unit(benchmark::kMillisecond);
BENCHMARK(healstarless_ours)->Unit(benchmark::kMillisecond);

} // namespace
