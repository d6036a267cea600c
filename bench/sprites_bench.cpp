#include <algorithm>
#include <vector>

#include "bench/bench_support.h"
#include "engine/demo/demo_scene.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/star_depth.h"
#include "engine/stars/star_sprites.h"
#include "engine/stereo/eye.h"
#include "tests/engine/stars/naive_sprites.h"
#include "tests/engine/stereo/hilly_depth.h"

namespace {

/// The stars of the built-in scene as the detector cuts them out, scattered in depth, and what the
/// eye of the same picture needs; made once, before any clock runs.
struct Bench
{
    zre::Image picture;
    zre::Image depth = zrtest::hillyDepth(benchWidth(), benchHeight(), 0.005, 2);
    zre::Image out = zre::Image(benchWidth(), benchHeight(), 1);
    std::vector<zre::Star> stars;
    double spritePixels = 0.0;

    Bench()
    {
        zre::DemoScene scene = zre::makeDemoScene({.width = benchWidth(),
                                                   .height = benchHeight(),
                                                   .stars = benchWidth() * benchHeight() / 480});
        picture = std::move(scene.picture);
        zre::detectStars(picture, stars, out, {}, nullptr);
        zre::assignStarDepths(depth, stars, zre::StarDepthParams{.plane = 0.6f});
        for (const zre::Star& star : stars)
            spritePixels += static_cast<double>(star.alpha.size());
    }

    static Bench& instance()
    {
        static Bench bench;
        return bench;
    }
};

template <typename Work>
void run(benchmark::State& state, Work work)
{
    Bench& b = Bench::instance();
    for (auto _ : state) {
        work(b);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
    state.counters["quality:stars"] = static_cast<double>(b.stars.size());
    state.counters["quality:pixels of sprites"] = b.spritePixels;
}

void sprites_ours(benchmark::State& state)
{
    run(state, [&](Bench& b) {
        zre::drawStarSprites(b.stars, b.out, 20, 0.5, 1, 0, 0, 0, -1, -1, &b.depth,
                             state.range(0) ? 1.0f : 0.0f);
    });
}

void sprites_naive(benchmark::State& state)
{
    const naive::SpriteEye eye{.occlusion = state.range(0) ? 1.0f : 0.0f};
    run(state, [&](Bench& b) { naive::drawSprites(b.stars, b.out, eye, &b.depth); });
}

/// The warps of the picture that the stars are drawn on.
void sprites_eyehorizontal(benchmark::State& state)
{
    run(state, [](Bench& b) {
        zre::renderEyeHorizontal(b.picture, b.depth, b.out, 20, 0.5, 1, 0, {}, nullptr);
    });
}

void sprites_eye2d(benchmark::State& state)
{
    run(state, [](Bench& b) {
        zre::renderEye2D(b.picture, b.depth, b.out, 20, 0.5, 2.4, 1.8, 0, 0, -1, -1, false,
                         nullptr);
    });
}

/// The stars of a flyby's frame: every sprite grows with its nearness.
void spriteszoom_ours(benchmark::State& state)
{
    run(state, [](Bench& b) {
        zre::drawStarSprites(b.stars, b.out, 20, 0.3, 0.3, 0.1, 0, 0.15, -1, -1, nullptr, 0);
    });
}

void spriteszoom_naive(benchmark::State& state)
{
    const naive::SpriteEye eye{.convergence = 0.3, .dirX = 0.3, .dirY = 0.1, .zoomGain = 0.15};
    run(state, [&](Bench& b) { naive::drawSprites(b.stars, b.out, eye, nullptr); });
}

BENCHMARK(sprites_ours)->ArgName("occluded")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(sprites_naive)->ArgName("occluded")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(sprites_eyehorizontal)->ArgName("occluded")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(sprites_eye2d)->ArgName("occluded")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(spriteszoom_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(spriteszoom_naive)->Unit(benchmark::kMillisecond);

} // namespace
