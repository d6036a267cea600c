#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/bench_support.h"
#include "engine/image/blur.h"
#include "engine/image/histogram.h"
#include "engine/image/raster.h"
#include "tests/engine/image/naive.h"

using zre::Image;

// The slow forms would take minutes on the whole picture; their rate per pixel does not depend on
// its size.
static int naiveWidth()
{
    return std::min(benchWidth(), 1200);
}

static int naiveHeight()
{
    return std::min(benchHeight(), 800);
}

// The first call of a form finds fresh memory, whose page faults would outweigh the work; it is
// made outside the clock for ours and the peer alike.
template <class Work>
static void measure(benchmark::State& state, const Work& work)
{
    work();
    for (auto _ : state)
        work();
}

static Image noise(int width, int height, int model)
{
    Image img(width, height, model);
    std::minstd_rand random(7);
    for (float& v : img.data)
        v = static_cast<float>(random() % 65536) / 65535.0f;
    return img;
}

static cv::Mat matOf(Image& img, int channel)
{
    cv::setNumThreads(1);
    return cv::Mat(img.height, img.width, CV_32F, img.plane(channel));
}

static void openCvMean(const cv::Mat& from, cv::Mat& to, double sigma)
{
    const int taps =
        static_cast<int>(naive::gaussianWeights(static_cast<float>(sigma), 0.01f).size());
    cv::GaussianBlur(from, to, cv::Size(taps, taps), sigma, sigma, cv::BORDER_REPLICATE);
}

static void blur_ours(benchmark::State& state)
{
    Image img = noise(benchWidth(), benchHeight(), 0);
    measure(state, [&] { zre::gaussianBlur(img, static_cast<float>(state.range(0)), 0.01f, {}); });
    countPixels(state, img.width, img.height);
}

static void blur_opencv(benchmark::State& state)
{
    Image img = noise(benchWidth(), benchHeight(), 0);
    Image out = img;
    cv::Mat to = matOf(out, 0);
    measure(state, [&] { openCvMean(matOf(img, 0), to, static_cast<double>(state.range(0))); });
    countPixels(state, img.width, img.height);
}

static void blur_naive(benchmark::State& state)
{
    const Image img = noise(naiveWidth(), naiveHeight(), 0);
    measure(state, [&] {
        benchmark::DoNotOptimize(naive::blurred(img, static_cast<float>(state.range(0)), 0.01f));
    });
    countPixels(state, img.width, img.height);
}

BENCHMARK(blur_ours)->ArgName("sigma")->Arg(2)->Arg(6)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(blur_opencv)->ArgName("sigma")->Arg(2)->Arg(6)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(blur_naive)->ArgName("sigma")->Arg(2)->Arg(6)->Arg(50)->Unit(benchmark::kMillisecond);

static void guided_ours(benchmark::State& state)
{
    const Image guide = noise(benchWidth(), benchHeight(), 0);
    Image target = guide;
    measure(state, [&] {
        zre::guidedFilter(guide, target, static_cast<double>(state.range(0)), 1e-3f, {});
    });
    countPixels(state, guide.width, guide.height);
}

// The same filter out of the peer's blurs and its plane arithmetic in single precision.
static void guided_opencv(benchmark::State& state)
{
    Image guideImage = noise(benchWidth(), benchHeight(), 0);
    Image targetImage = guideImage;
    const cv::Mat guide = matOf(guideImage, 0);
    cv::Mat target = matOf(targetImage, 0);
    const double sigma = static_cast<double>(state.range(0));
    cv::Mat meanI, meanP, meanII, meanIP, product, a, b;
    measure(state, [&] {
        openCvMean(guide, meanI, sigma);
        openCvMean(target, meanP, sigma);
        cv::multiply(guide, guide, product);
        openCvMean(product, meanII, sigma);
        cv::multiply(guide, target, product);
        openCvMean(product, meanIP, sigma);
        cv::multiply(meanI, meanI, product);
        cv::subtract(meanII, product, meanII);
        cv::add(meanII, 1e-3, meanII);
        cv::multiply(meanI, meanP, product);
        cv::subtract(meanIP, product, meanIP);
        cv::divide(meanIP, meanII, a);
        cv::multiply(a, meanI, product);
        cv::subtract(meanP, product, b);
        openCvMean(a, meanI, sigma);
        openCvMean(b, meanP, sigma);
        cv::multiply(meanI, guide, product);
        cv::add(product, meanP, target);
    });
    countPixels(state, guide.cols, guide.rows);
}

static void guided_naive(benchmark::State& state)
{
    const Image guide = noise(naiveWidth(), naiveHeight(), 0);
    measure(state, [&] {
        benchmark::DoNotOptimize(
            naive::guided(guide, guide, static_cast<float>(state.range(0)), 1e-3f));
    });
    countPixels(state, guide.width, guide.height);
}

BENCHMARK(guided_ours)->ArgName("sigma")->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(guided_opencv)->ArgName("sigma")->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(guided_naive)->ArgName("sigma")->Arg(2)->Unit(benchmark::kMillisecond);

static void lightness_ours(benchmark::State& state)
{
    const Image img = noise(benchWidth(), benchHeight(), 1);
    Image out;
    measure(state, [&] { zre::getLightness(img, out); });
    countPixels(state, img.width, img.height);
}

static void lightness_opencv(benchmark::State& state)
{
    Image img = noise(benchWidth(), benchHeight(), 1);
    cv::Mat rgb;
    cv::merge(std::vector<cv::Mat>{matOf(img, 0), matOf(img, 1), matOf(img, 2)}, rgb);
    cv::Mat lab(rgb.rows, rgb.cols, CV_32FC3);
    measure(state, [&] { cv::cvtColor(rgb, lab, cv::COLOR_RGB2Lab); });
    countPixels(state, img.width, img.height);
}

static void lightness_naive(benchmark::State& state)
{
    const Image img = noise(naiveWidth(), naiveHeight(), 1);
    Image out(img.width, img.height, 0);
    measure(state, [&] {
        for (std::size_t i = 0; i < img.pixelCount(); ++i)
            out.data[i] = static_cast<float>(naive::lightness(
                naive::luminance(img.plane(0)[i], img.plane(1)[i], img.plane(2)[i])));
    });
    countPixels(state, img.width, img.height);
}

BENCHMARK(lightness_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(lightness_opencv)->Unit(benchmark::kMillisecond);
BENCHMARK(lightness_naive)->Unit(benchmark::kMillisecond);

static void resample_ours(benchmark::State& state)
{
    const Image img = noise(benchWidth(), benchHeight(), 1);
    const int by = static_cast<int>(state.range(0));
    Image out;
    measure(state, [&] { zre::areaResample(img, img.width / by, img.height / by, out); });
    countPixels(state, img.width, img.height);
}

static void resample_opencv(benchmark::State& state)
{
    Image img = noise(benchWidth(), benchHeight(), 1);
    const int by = static_cast<int>(state.range(0));
    Image out(img.width / by, img.height / by, 1);
    measure(state, [&] {
        for (int channel = 0; channel < 3; ++channel) {
            cv::Mat to = matOf(out, channel);
            cv::resize(matOf(img, channel), to, to.size(), 0, 0, cv::INTER_AREA);
        }
    });
    countPixels(state, img.width, img.height);
}

static void resample_naive(benchmark::State& state)
{
    const Image img = noise(naiveWidth(), naiveHeight(), 1);
    const int by = static_cast<int>(state.range(0));
    measure(state, [&] {
        benchmark::DoNotOptimize(naive::resampled(img, img.width / by, img.height / by));
    });
    countPixels(state, img.width, img.height);
}

BENCHMARK(resample_ours)->ArgName("by")->Arg(2)->Arg(4)->Arg(7)->Unit(benchmark::kMillisecond);
BENCHMARK(resample_opencv)->ArgName("by")->Arg(2)->Arg(4)->Arg(7)->Unit(benchmark::kMillisecond);
BENCHMARK(resample_naive)->ArgName("by")->Arg(2)->Arg(4)->Arg(7)->Unit(benchmark::kMillisecond);

static void histogram_ours(benchmark::State& state)
{
    const Image img = noise(benchWidth(), benchHeight(), 0);
    measure(state,
            [&] { benchmark::DoNotOptimize(zre::histogramOf(img.plane(0), img.pixelCount())); });
    countPixels(state, img.width, img.height);
}

static void histogram_opencv(benchmark::State& state)
{
    Image img = noise(benchWidth(), benchHeight(), 0);
    const cv::Mat plane = matOf(img, 0);
    const int channel = 0;
    const int bins = zre::Histogram::kBins;
    const float range[] = {0.0f, 1.0f};
    const float* ranges = range;
    cv::Mat counts;
    measure(state,
            [&] { cv::calcHist(&plane, 1, &channel, cv::Mat(), counts, 1, &bins, &ranges); });
    countPixels(state, img.width, img.height);
}

static void histogram_naive(benchmark::State& state)
{
    const Image img = noise(benchWidth(), benchHeight(), 0);
    measure(state, [&] {
        std::vector<int> counts(zre::Histogram::kBins);
        for (const float v : img.data)
            ++counts[naive::bin(v)];
        benchmark::DoNotOptimize(counts.data());
    });
    countPixels(state, img.width, img.height);
}

BENCHMARK(histogram_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(histogram_opencv)->Unit(benchmark::kMillisecond);
BENCHMARK(histogram_naive)->Unit(benchmark::kMillisecond);
