#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/bench_support.h"
#include "engine/flight/flyby_frame.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/views.h"
#include "tests/engine/stereo/hilly_depth.h"
#include "tests/engine/stereo/naive_eye.h"

using zre::Image;

namespace {

/// A colour picture of three different planes of structure and noise.
Image picture(unsigned seed)
{
    Image img(benchWidth(), benchHeight(), 1);
    for (int c = 0; c < 3; ++c) {
        const Image plane = zrtest::hillyDepth(img.width, img.height, 0.3, seed + unsigned(c));
        std::copy(plane.data.begin(), plane.data.end(), img.plane(c));
    }
    return img;
}

/// Source, depth and outputs of every benchmark; made once, so that no page is touched for the
/// first time while the clock runs.
struct Bench
{
    int width = benchWidth();
    int height = benchHeight();
    Image src = picture(1);
    Image depth = zrtest::hillyDepth(width, height, 0.005, 2);
    Image out = src;
    Image outDepth = Image(width, height, 0);

    static Bench& instance()
    {
        static Bench bench;
        return bench;
    }
};

/// The default parallax and a frame of an orbit at the default amplitude.
const naive::Eye kStereoEye{};
const naive::Eye kWiggleEye{.offsetX = 2.4, .offsetY = 1.8};
const naive::Eye kFlybyEye{
    .convergence = 0.3, .offsetX = 0.3, .offsetY = 0.1, .zoom = 0.15, .splat = true};

template <typename Work>
void run(benchmark::State& state, Work work)
{
    Bench& b = Bench::instance();
    for (auto _ : state) {
        work(b);
        benchmark::ClobberMemory();
    }
    countPixels(state, b.width, b.height);
}

void eyehorizontal_ours(benchmark::State& state)
{
    run(state, [](Bench& b) {
        zre::renderEyeHorizontal(b.src, b.depth, b.out, kStereoEye.parallax, kStereoEye.convergence,
                                 kStereoEye.offsetX, 0, {}, nullptr);
    });
}

void eyehorizontal_memcpy(benchmark::State& state)
{
    run(state, [](Bench& b) {
        for (int c = 0; c < 3; ++c)
            std::memcpy(b.out.plane(c), b.src.plane(c), b.src.pixelCount() * sizeof(float));
    });
}

void eyehorizontal_naive(benchmark::State& state)
{
    run(state,
        [](Bench& b) { naive::renderHorizontal(b.src, b.depth, kStereoEye, b.out, b.outDepth); });
}

void render2D(Bench& b, const naive::Eye& e)
{
    zre::renderEye2D(b.src, b.depth, b.out, e.parallax, e.convergence, e.offsetX, e.offsetY,
                     e.maxDisparity, e.zoom, e.centerX, e.centerY, e.splat, nullptr);
}

void eye2d_ours(benchmark::State& state)
{
    run(state, [](Bench& b) { render2D(b, kWiggleEye); });
}

void eye2d_naive(benchmark::State& state)
{
    run(state, [](Bench& b) { naive::render2D(b.src, b.depth, kWiggleEye, b.out, b.outDepth); });
}

/// Pictures of the place of each pixel.
Image places(int width, int height)
{
    Image img(width, height, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::size_t i = std::size_t(y) * std::size_t(width) + std::size_t(x);
            img.plane(0)[i] = float(x);
            img.plane(1)[i] = float(y);
        }
    return img;
}

/// What the peer's gather needs: a mat over each plane, and maps of the source positions.
struct PeerScene
{
    explicit PeerScene(Bench& b)
        : mapX(b.height, b.width, CV_32F)
        , mapY(b.height, b.width, CV_32F)
    {
        cv::setNumThreads(1);
        for (int c = 0; c < 3; ++c) {
            src.emplace_back(b.height, b.width, CV_32F, b.src.plane(c));
            out.emplace_back(b.height, b.width, CV_32F, b.out.plane(c));
        }
    }

    /// Maps of the wiggle's warp, as if every pixel moved like the one it moves onto.
    static PeerScene ofWiggle(Bench& b)
    {
        PeerScene peer(b);
        const double gainX = kWiggleEye.offsetX * 0.5 * kWiggleEye.parallax;
        const double gainY = kWiggleEye.offsetY * 0.5 * kWiggleEye.parallax;
        const float* depth = b.depth.plane(0);
        for (int y = 0; y < b.height; ++y)
            for (int x = 0; x < b.width; ++x) {
                const double nearness = *depth++ - kWiggleEye.convergence;
                peer.mapX.at<float>(y, x) = float(x - gainX * nearness);
                peer.mapY.at<float>(y, x) = float(y - gainY * nearness);
            }
        return peer;
    }

    /// The very maps of the flyby's warp, its holes filled: where it shows a picture of the places.
    static PeerScene ofFlyby(Bench& b)
    {
        PeerScene peer(b);
        const Image from = places(b.width, b.height);
        Image shown = from;
        const naive::Eye& e = kFlybyEye;
        zre::renderEye2D(from, b.depth, shown, e.parallax, e.convergence, e.offsetX, e.offsetY,
                         e.maxDisparity, e.zoom, e.centerX, e.centerY, e.splat, nullptr);
        std::copy_n(shown.plane(0), shown.pixelCount(), peer.mapX.ptr<float>());
        std::copy_n(shown.plane(1), shown.pixelCount(), peer.mapY.ptr<float>());
        return peer;
    }

    std::vector<cv::Mat> src;
    std::vector<cv::Mat> out;
    cv::Mat mapX;
    cv::Mat mapY;
};

/// The peer's gather alone, by maps that stand already: it neither finds out which pixel is seen
/// nor fills a hole. One call for an interleaved picture is its fastest form.
void remapInterleaved(benchmark::State& state, const PeerScene& peer)
{
    cv::Mat src;
    cv::merge(peer.src, src);
    cv::Mat out = src.clone();
    run(state, [&](Bench&) { cv::remap(src, out, peer.mapX, peer.mapY, cv::INTER_LINEAR); });
}

/// The same on planes, as our pictures lie in memory.
void remapPlanar(benchmark::State& state, PeerScene peer)
{
    run(state, [&](Bench&) {
        for (std::size_t c = 0; c < 3; ++c)
            cv::remap(peer.src[c], peer.out[c], peer.mapX, peer.mapY, cv::INTER_LINEAR);
    });
}

void eye2d_opencv(benchmark::State& state)
{
    remapInterleaved(state, PeerScene::ofWiggle(Bench::instance()));
}

void eye2d_opencvplanar(benchmark::State& state)
{
    remapPlanar(state, PeerScene::ofWiggle(Bench::instance()));
}

void eye2dzoom_ours(benchmark::State& state)
{
    run(state, [](Bench& b) { render2D(b, kFlybyEye); });
}

void eye2dzoom_naive(benchmark::State& state)
{
    run(state, [](Bench& b) { naive::render2D(b.src, b.depth, kFlybyEye, b.out, b.outDepth); });
}

void eye2dzoom_opencv(benchmark::State& state)
{
    remapInterleaved(state, PeerScene::ofFlyby(Bench::instance()));
}

void eye2dzoom_opencvplanar(benchmark::State& state)
{
    remapPlanar(state, PeerScene::ofFlyby(Bench::instance()));
}

/// A camera in mid-swing, with the warp of `kFlybyEye`.
zre::FlybyCamera camera(double zoom, double warp, double roll)
{
    zre::FlybyCamera cam;
    cam.cx = benchWidth() * 0.5;
    cam.cy = benchHeight() * 0.5;
    cam.zoom = zoom;
    cam.warp = warp;
    cam.amp = 0.3;
    cam.phase = 1.0;
    cam.sway = 20.0;
    cam.roll = roll;
    return cam;
}

/// A frame of a flyby in memory that is kept: zoom, warp and roll in hundredths.
void flybyframe_ours(benchmark::State& state)
{
    const zre::FlybyCamera cam = camera(double(state.range(0)) / 100, double(state.range(1)) / 100,
                                        double(state.range(2)) / 100);
    zre::ZRParams params;
    params.postEnabled = false;
    zre::FlybyScratch scratch;
    run(state, [&](Bench& b) {
        zre::renderFlybyFrame(b.src, b.depth, cam, true, kFlybyEye.convergence, params, b.out,
                              nullptr, nullptr, nullptr, 0.0, b.width, b.height, &scratch);
    });
}

/// The whole eye by itself: what a frame took at least while its window did not matter.
void flybyframe_eye(benchmark::State& state)
{
    const double warp = double(state.range(1)) / 100;
    run(state, [&](Bench& b) {
        zre::renderEye(b.src, b.depth, b.out, kFlybyEye.parallax, kFlybyEye.convergence, 0.24, 0.09,
                       0.0, warp, -1.0, -1.0, warp != 0.0, nullptr);
    });
}

void anaglyph_ours(benchmark::State& state)
{
    const Image right = picture(4);
    run(state, [&](Bench& b) {
        zre::makeAnaglyph(b.src, right, b.out, static_cast<int>(state.range(0)), 1, 1, 1);
    });
}

void anaglyph_naive(benchmark::State& state)
{
    const Image right = picture(4);
    run(state, [&](Bench& b) {
        naive::makeAnaglyph(b.src, right, b.out, static_cast<int>(state.range(0)), 1, 1, 1);
    });
}

BENCHMARK(eyehorizontal_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(eyehorizontal_memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(eyehorizontal_naive)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2d_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2d_opencv)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2d_opencvplanar)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2d_naive)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2dzoom_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2dzoom_opencv)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2dzoom_opencvplanar)->Unit(benchmark::kMillisecond);
BENCHMARK(eye2dzoom_naive)->Unit(benchmark::kMillisecond);
/// The whole picture without and with the warp, a near window, a window that is turned within the
/// picture.
void flybyCases(benchmark::internal::Benchmark* rows)
{
    rows->ArgNames({"zoom", "warp", "roll"})->Unit(benchmark::kMillisecond);
    for (const auto& row :
         {std::vector<std::int64_t>{100, 0, 0}, {100, 15, 0}, {400, 15, 0}, {400, 15, 1000}})
        rows->Args(row);
}

BENCHMARK(flybyframe_ours)->Apply(flybyCases);
BENCHMARK(flybyframe_eye)->Apply(flybyCases);
BENCHMARK(anaglyph_ours)->ArgName("mode")->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);
BENCHMARK(anaglyph_naive)->ArgName("mode")->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);

} // namespace
