#include "engine/stars/detect_stars.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/image/blur.h"
#include "engine/image/multiversion.h"
#include "engine/stars/blob_finder.h"
#include "engine/stars/erasure_mask.h"
#include "engine/stars/sprite_cutter.h"
#include "engine/stars/star_list.h"

namespace zre {

namespace {

constexpr float kBackgroundCutoff = 0.01f;

/// Channels that stars are taken out of; any beyond are not light.
constexpr int kLightChannels = 4;

/// Samples of a plane done for all channels, so that the residual stays in the cache.
constexpr std::size_t kBatch = 4096;

/// A pixel's light above its background; a difference that is no finite number is none.
ZR_KERNEL_STEP float lightAbove(float value, float background)
{
    const float light = value - background;
    const float bound = light <= std::numeric_limits<float>::max() ? light : 0.0f;
    return bound > 0.0f ? bound : 0.0f;
}

ZR_MULTIVERSION void raiseToLight(const float* __restrict values,
                                  const float* __restrict background, float* __restrict residual,
                                  std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float light = lightAbove(values[i], background[i]);
        residual[i] = residual[i] < light ? light : residual[i];
    }
}

/// The light of each pixel's brightest channel.
std::vector<float> residualPlane(const Image& image, const Image& background)
{
    std::vector<float> residual(image.pixelCount(), 0.0f);
    for (std::size_t first = 0; first < residual.size(); first += kBatch) {
        const std::size_t count = std::min(kBatch, residual.size() - first);
        for (int c = 0; c < image.channels; ++c)
            raiseToLight(image.plane(c) + first, background.plane(c) + first,
                         residual.data() + first, count);
    }
    return residual;
}

/// What is left of the pixels that stars covered.
struct ClearedPixels
{
    std::vector<std::size_t> pixels;
    std::vector<float> values; ///< for each pixel one value a channel

    void putInto(Image& image, int channels) const
    {
        const float* value = values.data();
        for (const std::size_t pixel : pixels)
            for (int c = 0; c < channels; ++c)
                image.plane(c)[pixel] = *value++;
    }
};

/// Makes stars of blobs of a photograph.
class StarMaker
{
public:
    StarMaker(const Image& image, const Image& background, const std::vector<float>& residual,
              const BlobThresholds& thresholds, const StarDetectParams& params,
              const std::vector<StarErasure>& erasures)
        : m_image(image)
        , m_background(background)
        , m_residual(residual)
        , m_thresholds(thresholds)
        , m_mask(erasures)
        , m_cutter(params, image.width, image.height, image.channels)
    {
    }

    Star make(const Blob& blob, const BlobFinder& finder)
    {
        Star star;
        star.x = blob.sumX / blob.sum;
        star.y = blob.sumY / blob.sum;
        star.peak = blob.peak;
        blob.bounds.select(m_mask);
        clear(blob);
        const auto sample = [&](std::size_t pixel, float* out) {
            for (int c = 0; c < m_image.channels; ++c)
                out[c] = lightAt(c, pixel);
        };
        m_cutter.cut(star, blob.pixels, blob.bounds, sample,
                     [&](std::size_t pixel) { return finder.isTaken(pixel); });
        applyErasureToSprite(star, m_mask);
        return star;
    }

    int clearedChannels() const { return std::min(m_image.channels, kLightChannels); }
    const ClearedPixels& cleared() const { return m_cleared; }

private:
    float lightAt(int channel, std::size_t pixel) const
    {
        return lightAbove(m_image.plane(channel)[pixel], m_background.plane(channel)[pixel]);
    }

    float keptAt(std::size_t pixel) const
    {
        const std::size_t width = static_cast<std::size_t>(m_image.width);
        const std::size_t x = pixel % width;
        const std::size_t y = pixel / width;
        double remove = 0.0;
        double keepBack = 0.0;
        m_mask.coverageAt(static_cast<double>(x), static_cast<double>(y), remove, keepBack,
                          nullptr);
        return static_cast<float>(1.0 - remove);
    }

    void clear(const Blob& blob)
    {
        const bool erases = !m_mask.empty();
        for (const std::size_t pixel : blob.pixels) {
            const float alpha = m_thresholds.coverage(m_residual[pixel]);
            const float kept = erases ? keptAt(pixel) : 1.0f;
            m_cleared.pixels.push_back(pixel);
            for (int c = 0; c < clearedChannels(); ++c)
                m_cleared.values.push_back(
                    std::max(0.0f, m_image.plane(c)[pixel] - lightAt(c, pixel) * kept * alpha));
        }
    }

    const Image& m_image;
    const Image& m_background;
    const std::vector<float>& m_residual;
    const BlobThresholds& m_thresholds;
    ErasureMask m_mask;
    SpriteCutter m_cutter;
    ClearedPixels m_cleared;
};

} // namespace

void detectStars(const Image& image, std::vector<Star>& stars, Image& starless,
                 const StarDetectParams& params, const std::vector<StarErasure>* erasures)
{
    const std::vector<StarErasure> none;
    stars.clear();
    if (image.width < 3 || image.height < 3 || image.channels < 1) {
        starless = image;
        return;
    }
    // Holds the background until the stars are found: one copy of the picture less.
    Image& background = starless;
    gaussianBlur(image, background, params.backgroundScale, kBackgroundCutoff, {});
    const std::vector<float> residual = residualPlane(image, background);
    const BlobThresholds thresholds(residual, static_cast<double>(params.thresholdSigma));
    BlobFinder finder(residual, image.width, image.height, thresholds,
                      2 * std::int64_t{params.maxRadius});
    StarMaker maker(image, background, residual, thresholds, params, erasures ? *erasures : none);
    Blob blob;
    while (finder.next(blob))
        if (blob.bright(params.minPeak))
            stars.push_back(maker.make(blob, finder));

    starless.data = image.data;
    maker.cleared().putInto(starless, maker.clearedChannels());
    capStarsByBrightness(stars, params.maxStars);
}

} // namespace zre
