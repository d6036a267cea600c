#pragma once

#include <cstdint>
#include <cstdlib>

#include <benchmark/benchmark.h>

/// The picture all benchmarks run on: 24 megapixels, or a small one when the environment sets
/// ZR_BENCH_QUICK, with which every benchmark runs once as a test.
inline bool benchQuick()
{
    const char* quick = std::getenv("ZR_BENCH_QUICK");
    return quick && quick[0] == '1';
}

inline int benchWidth()
{
    return benchQuick() ? 240 : 6000;
}

inline int benchHeight()
{
    return benchQuick() ? 160 : 4000;
}

/// States the work of one iteration, so that the report gives pixels per second.
inline void countPixels(benchmark::State& state, std::int64_t width, std::int64_t height)
{
    state.SetItemsProcessed(state.iterations() * width * height);
}
