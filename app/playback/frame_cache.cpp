#include "app/playback/frame_cache.h"

#include <algorithm>
#include <map>
#include <new>
#include <utility>

#include "app/export/frame_farm.h"
#include "app/export/image_pool.h"
#include "app/export/video_plan.h"
#include "app/playback/preview_scale.h"
#include "engine/flight/flyby_frame.h"
#include "engine/qt/zre_qt.h"

static constexpr int kWatchMs = 20;

static std::size_t index(int frame)
{
    return static_cast<std::size_t>(frame);
}

bool FrameCache::isBuilt(int frame) const
{
    return frame >= 0 && frame < frames() && !m_slots[index(frame)].isNull();
}

/// Whether all that fit are there.
bool FrameCache::stands(const QString& key) const
{
    return !m_slots.empty() && m_key == key &&
           std::none_of(m_slots.begin(), m_slots.begin() + m_planned,
                        [](const QImage& slot) { return slot.isNull(); });
}

bool FrameCache::buildFrameCache(MotionInputs inputs, const Order& order, const Watch& watch)
{
    if (stands(order.key))
        return true;
    releaseFrames();
    const bool hasImages =
        inputs.working && inputs.depth && inputs.working->usable() && inputs.depth->usable();
    if (!hasImages || inputs.frames() < 1)
        return true;
    m_full = std::move(inputs);
    m_fraction = m_full.flyby ? order.fraction : 1.0;
    takeImages(order);
    m_size = m_shared.frameSize();
    m_slots.resize(index(m_full.frames()));
    m_planned = plannedFrames(frames(), m_size, order.ramPercent);
    if (!fill(order, watch)) {
        releaseFrames();
        return false;
    }
    m_key = order.key;
    return true;
}

/// The images that all frames share, at the scale of the preview.
void FrameCache::takeImages(const Order& order)
{
    if (std::exchange(m_imagesKey, order.imagesKey) != order.imagesKey)
        clearScaledPreviewInputs();
    m_imagesKey = order.imagesKey;
    if (m_fraction >= kFullScale) {
        m_shared = m_full;
        return;
    }
    if (m_scaled.working.usable() && m_scaled.scale == m_fraction)
        refreshBucketPath(m_full, m_scaled);
    else
        buildScaledPreviewInputs(m_full, m_fraction, m_scaled);
    m_shared = motionOf(m_scaled, m_full);
}

/// What the frames are drawn from, and for each planned frame which of these.
std::vector<MotionInputs> FrameCache::planSources(std::vector<int>& sourceOf)
{
    sourceOf.assign(index(m_planned), 0);
    const auto buckets = m_buckets.planFrameBuckets(m_full, m_fraction, m_planned);
    if (buckets.empty())
        return {m_shared};
    std::vector<MotionInputs> sources;
    std::map<const PreviewInputs*, int> numbers;
    for (int i = 0; i < m_planned; ++i) {
        const PreviewInputs* bucket = buckets[index(i)];
        const auto [place, isNew] = numbers.try_emplace(bucket, static_cast<int>(sources.size()));
        if (isNew)
            sources.push_back(motionOf(*bucket, m_full));
        sourceOf[index(i)] = place->second;
    }
    return sources;
}

bool FrameCache::fill(const Order& order, const Watch& watch)
{
    std::vector<int> sourceOf;
    const std::vector<MotionInputs> sources = planSources(sourceOf); // before any thread runs
    if (!watch(0, m_planned))
        return false;
    const int threads = order.threads > 0 ? order.threads : FrameFarm::threadsFor(m_planned);
    ImagePool pool;
    FrameFarm farm({m_planned, threads, m_planned, true}, [&](int frame) {
        ImagePool::Loan picture(pool);
        return draw(sources[index(sourceOf[index(frame)])], frame, *picture,
                    &picture.scratch().flyby);
    });
    for (int taken = 0; taken < m_planned && !farm.failed();) {
        farm.waitForNext(kWatchMs);
        while (farm.waitForNext(0))
            m_slots[index(taken++)] = farm.takeNext();
        if (!watch(farm.done(), m_planned))
            return false;
    }
    return true;
}

QImage FrameCache::draw(const MotionInputs& source, int frame, zre::Image& picture,
                        zre::FlybyScratch* scratch) const
{
    if (source.flyby)
        zre::renderFlybyFrame(*source.working, *source.depth, source.cameras[index(frame)],
                              source.ongoingWiggle, source.convergence, source.params, picture,
                              source.stars, nullptr, nullptr, 0.0, m_size.width(), m_size.height(),
                              scratch);
    else
        renderMotionFrame(source, frame, kFlat, picture);
    return zre_qt::toQImage(picture, QImage::Format_RGB32);
}

QImage FrameCache::renderPlaybackFrame(int frame)
{
    if (frame < 0 || frame >= frames())
        return {};
    try {
        zre::Image scratch;
        const double zoom = m_full.flyby ? m_full.cameras[index(frame)].zoom : 1.0;
        const double wanted = bucketScaleFor(m_fraction, zoom);
        if (m_fraction < kFullScale && wanted > m_fraction + 1e-9)
            if (const PreviewInputs* bucket = m_buckets.bucketFor(m_full, wanted))
                return draw(motionOf(*bucket, m_full), frame, scratch);
        return draw(m_shared, frame, scratch);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

QImage FrameCache::frameAt(int frame)
{
    return isBuilt(frame) ? m_slots[index(frame)] : renderPlaybackFrame(frame);
}

void FrameCache::releaseFrames()
{
    m_slots.clear();
    m_slots.shrink_to_fit();
    m_planned = 0;
    m_key.clear();
    m_full = {};
    m_shared = {};
}

void FrameCache::clearScaledPreviewInputs()
{
    m_scaled = {};
    m_buckets.clearBuckets();
    m_imagesKey.clear();
}
