// The depth build and the post grade on a colour picture of noise, the worst case of both; the
// plain form of the cues is the obvious transcription with its separable blur, one sample at a
// time.

#include <algorithm>
#include <cmath>
#include <random>

#include "bench/bench_support.h"
#include "engine/depth/depth_map.h"
#include "engine/post/post.h"

using zre::Image;
using zre::ZRParams;

static const Image& picture()
{
    static const Image made = [] {
        Image img(benchWidth(), benchHeight(), 1);
        std::minstd_rand random(7);
        for (float& v : img.data)
            v = static_cast<float>(random() & 0xffffff) / 16777216.0f;
        return img;
    }();
    return made;
}

// The plain form

using Plane = std::vector<float>;

static Plane blurredLines(const Plane& in, int lines, int length, int lineStep, int sampleStep,
                          const std::vector<float>& taps)
{
    Plane out(in.size());
    const int r = static_cast<int>(taps.size()) / 2;
    for (int line = 0; line < lines; ++line)
        for (int i = 0; i < length; ++i) {
            float sum = 0.0f;
            for (int k = -r; k <= r; ++k) {
                const int at = std::clamp(i + k, 0, length - 1);
                sum += taps[static_cast<std::size_t>(k + r)] *
                       in[static_cast<std::size_t>(line) * static_cast<std::size_t>(lineStep) +
                          static_cast<std::size_t>(at) * static_cast<std::size_t>(sampleStep)];
            }
            out[static_cast<std::size_t>(line) * static_cast<std::size_t>(lineStep) +
                static_cast<std::size_t>(i) * static_cast<std::size_t>(sampleStep)] = sum;
        }
    return out;
}

static Plane plainBlur(const Plane& in, double sigma)
{
    const int r = std::max(1, static_cast<int>(std::ceil(std::sqrt(-2 * std::log(0.01)) * sigma)));
    std::vector<float> taps;
    double total = 0.0;
    for (int i = -r; i <= r; ++i)
        total += std::exp(-i * i / (2 * sigma * sigma));
    for (int i = -r; i <= r; ++i)
        taps.push_back(static_cast<float>(std::exp(-i * i / (2 * sigma * sigma)) / total));
    const int w = benchWidth();
    const int h = benchHeight();
    return blurredLines(blurredLines(in, h, w, w, 1, taps), w, h, 1, w, taps);
}

static Plane plainGuidedFilter(const Plane& guide, const Plane& target, double sigma, double eps)
{
    const std::size_t n = guide.size();
    Plane square(n);
    Plane product(n);
    for (std::size_t i = 0; i < n; ++i) {
        square[i] = guide[i] * guide[i];
        product[i] = guide[i] * target[i];
    }
    const Plane meanGuide = plainBlur(guide, sigma);
    const Plane meanTarget = plainBlur(target, sigma);
    const Plane meanSquare = plainBlur(square, sigma);
    const Plane meanProduct = plainBlur(product, sigma);
    Plane a(n);
    Plane b(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double guideMean = meanGuide[i];
        const double variance = meanSquare[i] - guideMean * guideMean + eps;
        const double slope = (meanProduct[i] - guideMean * meanTarget[i]) / variance;
        a[i] = static_cast<float>(slope);
        b[i] = static_cast<float>(meanTarget[i] - slope * guideMean);
    }
    const Plane meanA = plainBlur(a, sigma);
    const Plane meanB = plainBlur(b, sigma);
    Plane out(n);
    for (std::size_t i = 0; i < n; ++i)
        out[i] = meanA[i] * guide[i] + meanB[i];
    return out;
}

static Plane plainLightness(const Image& img)
{
    const auto linear = [](float v) {
        return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
    };
    Plane out(img.pixelCount());
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double y = 0.2126 * linear(img.plane(0)[i]) + 0.7152 * linear(img.plane(1)[i]) +
                         0.0722 * linear(img.plane(2)[i]);
        const double f =
            y > 0.008856451679035631 ? std::cbrt(y) : (903.2962962962963 * y + 16.0) / 116.0;
        out[i] = static_cast<float>(std::clamp(116.0 * f - 16.0, 0.0, 100.0) / 100.0);
    }
    return out;
}

/// The cues under the default parameters.
static Plane plainCues(const Image& img)
{
    const Plane light = plainLightness(img);
    const Plane soft = plainBlur(light, 2.0);
    std::vector<int> bins(1024);
    for (std::size_t i = 0; i < light.size(); ++i)
        ++bins[static_cast<std::size_t>(
            std::clamp(std::floor(std::fabs(light[i] - soft[i]) * 1024.0f), 0.0f, 1023.0f))];
    double running = 0.0;
    std::size_t bin = 0;
    while ((running += bins[bin]) < std::floor(static_cast<double>(light.size()) * 0.995))
        ++bin;
    const double scale = 1024.0 / (static_cast<double>(bin) + 0.5);
    Plane depth(light.size());
    for (std::size_t i = 0; i < light.size(); ++i)
        depth[i] = static_cast<float>(
            (light[i] + 0.3 * std::min(1.0, std::fabs(light[i] - soft[i]) * scale)) / 1.3);
    depth = plainGuidedFilter(light, depth, 2.0, 0.0252);
    const auto [low, high] = std::minmax_element(depth.begin(), depth.end());
    const float lowest = *low;
    const float range = *high - lowest;
    for (float& v : depth)
        v = (v - lowest) / range;
    return depth;
}

// The measurements

static void cues_naive(benchmark::State& state)
{
    const Image& img = picture();
    for (auto _ : state)
        benchmark::DoNotOptimize(plainCues(img).data());
    countPixels(state, img.width, img.height);
}

static void cues_ours(benchmark::State& state, void (*set)(ZRParams&))
{
    ZRParams p;
    set(p);
    Image out;
    for (auto _ : state) {
        zre::buildDepthCues(picture(), p, {}, out, {}, {});
        benchmark::DoNotOptimize(out.data.data());
    }
    countPixels(state, picture().width, picture().height);
}

static void anchor_ours(benchmark::State& state)
{
    ZRParams p;
    p.resolveDistance = p.sourceIsStarless = p.manualAnchorOn = true;
    p.objectFit = 1.0f;
    Image depth(benchWidth(), benchHeight(), 0);
    std::copy_n(picture().plane(0), depth.data.size(), depth.data.begin());
    for (auto _ : state) {
        zre::applyAnchor(depth, p, depth);
        benchmark::DoNotOptimize(depth.data.data());
    }
    countPixels(state, depth.width, depth.height);
}

static void post_ours(benchmark::State& state, void (*set)(ZRParams&))
{
    ZRParams p;
    set(p);
    Image img = picture();
    for (auto _ : state) {
        zre::applyPost(img, p);
        benchmark::DoNotOptimize(img.data.data());
    }
    countPixels(state, img.width, img.height);
}

static void paintTenRows(ZRParams& p)
{
    p.colorDepthEnabled = true;
    p.colorDepthWeight = 0.8f;
    for (int i = 0; i < 10; ++i)
        p.colorDepthEntries += "1,0.2,0.5,0.6,0.3,0.9;";
}

BENCHMARK(cues_naive)->Name("cues_naive/defaults")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(cues_ours, defaults, [](ZRParams&) {})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cues_ours, unsmoothed, [](ZRParams& p) {
    p.smoothness = 0;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cues_ours, lightness_alone, [](ZRParams& p) {
    p.smoothness = 0, p.structureWeight = 0;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cues_ours, wide_structure, [](ZRParams& p) {
    p.structureScale = 20;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cues_ours, gamma, [](ZRParams& p) {
    p.depthGamma = 1.5f;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cues_ours, ten_rows, paintTenRows)->Unit(benchmark::kMillisecond);
BENCHMARK(anchor_ours)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(post_ours, contrast, [](ZRParams& p) {
    p.postContrast = 0.2f;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(post_ours, gamma, [](ZRParams& p) {
    p.postGamma = 1.5f;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(post_ours, saturation, [](ZRParams& p) {
    p.postSaturation = 0.2f;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(post_ours, hue, [](ZRParams& p) {
    p.postHue = 20;
})->Unit(benchmark::kMillisecond);
