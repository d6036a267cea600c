#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "engine/image/blur.h"
#include "engine/image/multiversion.h"
#include "engine/image/plane_blur.h"

namespace zre {

static constexpr int kStages = 6;

ZR_MULTIVERSION static void multiplyPlanes(const float* __restrict a, const float* __restrict b,
                                           float* __restrict product, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        product[i] = a[i] * b[i];
}

/// Turns the local means of I*I and p into the planes a and b of the model p = a*I + b, in place.
ZR_MULTIVERSION static void fitLocalModel(const float* __restrict meanGuide,
                                          const float* __restrict meanProduct, double eps,
                                          float* __restrict squareToA, float* __restrict targetToB,
                                          std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double guide = meanGuide[i];
        const double target = targetToB[i];
        const double variance = squareToA[i] - guide * guide + eps;
        const double a = (meanProduct[i] - guide * target) / variance;
        squareToA[i] = static_cast<float>(a);
        targetToB[i] = static_cast<float>(target - a * guide);
    }
}

/// target = a*I + b, where `target` brings b.
ZR_MULTIVERSION static void evaluateModel(const float* __restrict guide, const float* __restrict a,
                                          float* __restrict target, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double product = static_cast<double>(a[i]) * static_cast<double>(guide[i]);
        target[i] = static_cast<float>(product + static_cast<double>(target[i]));
    }
}

namespace {

/// The six local means of one call: one kernel and one scratch plane for all of them.
class StagedMeans
{
public:
    StagedMeans(const Image& img, double sigma, const Progress& progress)
        : m_lines(static_cast<double>(img.width) + img.height)
        , m_progress(progress)
    {
        // A sigma that the blur's own type cannot tell from 0 has no kernel.
        if (const float narrow = static_cast<float>(sigma); narrow > 0.0f)
            m_blur.emplace(img.width, img.height, gaussianKernel(narrow, 0.01f));
    }

    void next(float* plane)
    {
        const double from = static_cast<double>(m_stage) / kStages;
        const double to = static_cast<double>(m_stage + 1) / kStages;
        ++m_stage;
        if (!m_blur)
            return;
        const Progress inner = subRange(m_progress, from, to);
        LineCounter lines(inner, m_lines);
        m_blur->apply(plane, lines);
    }

private:
    double m_lines;
    const Progress& m_progress;
    std::optional<PlaneBlur> m_blur;
    int m_stage = 0;
};

} // namespace

void guidedFilter(const Image& guide, Image& target, double sigma, float eps,
                  const Progress& progress)
{
    if (!guide.usable() || !target.usable() || !std::isfinite(static_cast<float>(sigma)) ||
        !std::isfinite(eps))
        return;
    const std::size_t count = target.pixelCount();
    std::vector<float> ownGuide; // a target that guides itself is read after it has changed
    if (&guide == &target)
        ownGuide.assign(guide.plane(0), guide.plane(0) + count);
    const float* const i = ownGuide.empty() ? guide.plane(0) : ownGuide.data();
    float* const p = target.plane(0);
    StagedMeans means(target, sigma, progress);

    // The mean of p, then b, live in the target itself; the mean of I*I becomes a.
    std::vector<float> meanGuide(i, i + count);
    const auto square = std::make_unique_for_overwrite<float[]>(count);
    const auto product = std::make_unique_for_overwrite<float[]>(count);
    multiplyPlanes(i, i, square.get(), count);
    multiplyPlanes(i, p, product.get(), count);
    means.next(meanGuide.data());
    means.next(p);
    means.next(square.get());
    means.next(product.get());
    fitLocalModel(meanGuide.data(), product.get(), static_cast<double>(eps), square.get(), p,
                  count);
    means.next(square.get());
    means.next(p);
    evaluateModel(i, square.get(), p, count);
    if (progress)
        progress(1.0);
}

} // namespace zre
