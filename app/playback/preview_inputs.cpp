#include "app/playback/preview_inputs.h"

#include <algorithm>
#include <cmath>

#include "app/playback/preview_scale.h"
#include "engine/image/raster.h"
#include "engine/stars/star_sprites.h"

static constexpr double kSameScale = 1e-9;

static QSize scaledSize(const zre::Image& image, double scale)
{
    constexpr long kSmallestSide = 2;
    const auto side = [&](int full) {
        return static_cast<int>(std::max(kSmallestSide, std::lround(full * scale)));
    };
    return {side(image.width), side(image.height)};
}

void refreshBucketPath(const MotionInputs& full, PreviewInputs& inputs)
{
    const auto rounded = [&](int side) {
        return static_cast<int>(std::floor(side * inputs.scale + 0.5));
    };
    inputs.cameras = full.cameras;
    for (zre::FlybyCamera& camera : inputs.cameras) {
        camera.cx *= inputs.scale;
        camera.cy *= inputs.scale;
    }
    inputs.params = full.params;
    zre::ZRParams& params = inputs.params;
    params.parallaxAmount = static_cast<float>(params.parallaxAmount * inputs.scale);
    params.maxDisparity = static_cast<float>(params.maxDisparity * inputs.scale);
    params.flybyFrameW = rounded(params.flybyFrameW);
    params.flybyFrameH = rounded(params.flybyFrameH);
}

void buildScaledPreviewInputs(const MotionInputs& full, double scale, PreviewInputs& out)
{
    out.scale = scale;
    refreshBucketPath(full, out);
    if (scale >= kFullScale)
        return;
    const zre::Image& working = *full.working;
    const QSize size = scaledSize(working, scale);
    zre::areaResample(working, size.width(), size.height(), out.working);
    zre::areaResample(*full.depth, size.width(), size.height(), out.depth);
    out.stars.clear();
    if (full.stars)
        zre::scaleStarSprites(*full.stars, double(size.width()) / working.width,
                              double(size.height()) / working.height, out.stars);
}

MotionInputs motionOf(const PreviewInputs& inputs, const MotionInputs& full)
{
    MotionInputs motion;
    const bool copied = inputs.working.usable();
    motion.working = copied ? &inputs.working : full.working;
    motion.depth = copied ? &inputs.depth : full.depth;
    motion.stars = copied ? &inputs.stars : full.stars;
    motion.params = inputs.params;
    motion.convergence = full.convergence;
    motion.flyby = full.flyby;
    motion.cameras = inputs.cameras;
    motion.ongoingWiggle = full.ongoingWiggle;
    return motion;
}

const PreviewInputs* PreviewBuckets::bucketFor(const MotionInputs& full, double scale)
{
    if (!full.working || !full.depth || !full.working->usable() || !full.depth->usable())
        return nullptr;
    scale = std::min(scale, 1.0);
    for (const std::unique_ptr<Bucket>& held : m_buckets) {
        if (std::abs(held->inputs.scale - scale) > kSameScale)
            continue;
        held->lastUsed = ++m_stamp;
        refreshBucketPath(full, held->inputs);
        return &held->inputs;
    }
    constexpr std::int64_t kBytesPerPixel = 16; // three planes and the depth, as floats
    const QSize size = scaledSize(*full.working, scale);
    auto bucket = std::make_unique<Bucket>();
    if (scale < kFullScale)
        bucket->bytes = std::int64_t(size.width()) * size.height() * kBytesPerPixel;
    makeRoom(bucket->bytes);
    buildScaledPreviewInputs(full, scale, bucket->inputs);
    bucket->lastUsed = ++m_stamp;
    m_buckets.push_back(std::move(bucket));
    return &m_buckets.back()->inputs;
}

void PreviewBuckets::makeRoom(std::int64_t bytesNeeded)
{
    while (!m_buckets.empty() &&
           (m_buckets.size() >= kMost || bytes() + bytesNeeded > kMostBytes)) {
        const auto oldest =
            std::min_element(m_buckets.begin(), m_buckets.end(), [](const auto& a, const auto& b) {
                return a->lastUsed < b->lastUsed;
            });
        m_buckets.erase(oldest);
    }
}

std::vector<const PreviewInputs*> PreviewBuckets::planFrameBuckets(const MotionInputs& full,
                                                                   double fraction, int frames)
{
    if (!full.flyby || !(fraction < kFullScale) || frames < 1 ||
        full.cameras.size() < static_cast<std::size_t>(frames))
        return {};
    std::vector<double> wanted;
    wanted.reserve(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i)
        wanted.push_back(bucketScaleFor(fraction, full.cameras[static_cast<std::size_t>(i)].zoom));
    std::vector<double> ladder = wanted;
    std::sort(ladder.begin(), ladder.end());
    if (ladder.back() <= fraction + kSameScale)
        return {};
    const auto same = [](double a, double b) { return std::abs(a - b) <= kSameScale; };
    ladder.erase(std::unique(ladder.begin(), ladder.end(), same), ladder.end());
    std::vector<const PreviewInputs*> buckets;
    buckets.reserve(ladder.size());
    for (const double scale : ladder)
        buckets.push_back(bucketFor(full, scale));
    const bool allHeld =
        std::all_of(buckets.begin(), buckets.end(), [this](const auto* b) { return holds(b); });
    if (!allHeld)
        return {};
    std::vector<const PreviewInputs*> plan;
    for (const double scale : wanted) {
        const auto rung = std::find_if(ladder.begin(), ladder.end(),
                                       [&](double each) { return same(each, scale); });
        plan.push_back(buckets[static_cast<std::size_t>(rung - ladder.begin())]);
    }
    return plan;
}

bool PreviewBuckets::holds(const PreviewInputs* inputs) const
{
    return std::any_of(m_buckets.begin(), m_buckets.end(),
                       [&](const auto& held) { return &held->inputs == inputs; });
}

void PreviewBuckets::clearBuckets()
{
    m_buckets.clear();
}

std::vector<double> PreviewBuckets::scales() const
{
    std::vector<double> all;
    for (const std::unique_ptr<Bucket>& held : m_buckets)
        all.push_back(held->inputs.scale);
    return all;
}

std::int64_t PreviewBuckets::bytes() const
{
    std::int64_t sum = 0;
    for (const std::unique_ptr<Bucket>& held : m_buckets)
        sum += held->bytes;
    return sum;
}
