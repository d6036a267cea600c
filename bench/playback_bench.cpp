#include <benchmark/benchmark.h>

#include "app/playback/frame_cache.h"
#include "bench/bench_support.h"
#include "engine/demo/demo_scene.h"
#include "engine/image/raster.h"

namespace {

/// The built-in scene as a parallax motion of sixteen frames.
struct Motion
{
    zre::DemoScene scene;
    zre::Image depth;
    MotionInputs inputs;

    Motion()
    {
        zre::DemoSceneOptions options;
        options.width = benchQuick() ? 240 : 1500;
        options.height = benchQuick() ? 160 : 1000;
        scene = zre::makeDemoScene(options);
        zre::getLightness(scene.picture, depth);
        inputs.working = &scene.picture;
        inputs.depth = &depth;
        inputs.params.wiggleFrames = 16;
    }
};

/// Frames a second that the cache builds with this many threads. The processor time, that of all
/// threads, tells what two of them can gain where the machine is busy with other work.
void frameCache(benchmark::State& state)
{
    static const Motion motion;
    for (auto _ : state) {
        FrameCache cache;
        cache.buildFrameCache(motion.inputs, {"k", "i", 1.0, 80, static_cast<int>(state.range(0))},
                              [](int, int) { return true; });
        benchmark::DoNotOptimize(cache.frames());
    }
    state.SetItemsProcessed(state.iterations() * motion.inputs.frames());
}
BENCHMARK(frameCache)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
