#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/stars/blob_finder.h"
#include "engine/stars/companion_wipe.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/erasure_mask.h"
#include "engine/stars/glow_blend.h"
#include "engine/stars/layer_plane.h"
#include "engine/stars/masked_blobs.h"
#include "engine/stars/region_split.h"
#include "engine/stars/residual_stats.h"
#include "engine/stars/sprite_cutter.h"
#include "engine/stars/star_list.h"

namespace zre {

namespace {

/// Channels for which the light of a star can be sampled other than from the layer.
constexpr int kMostSampledChannels = 8;

/// Makes stars of the blobs of a stars layer.
class LayerStars
{
public:
    LayerStars(const Image& layer, const StarDetectParams& params, const BlobThresholds& thresholds,
               const Image* starlessLayer, const std::vector<StarErasure>& erasures,
               Image* keepBack, std::vector<Star>& stars)
        : m_layer(layer)
        , m_params(params)
        , m_thresholds(thresholds)
        , m_starless(starlessLayer && starlessLayer->usable() && starlessLayer->sameSize(layer)
                         ? starlessLayer
                         : nullptr)
        , m_mask(erasures)
        , m_keepBack(keepBack)
        , m_stars(stars)
        , m_cutter(params, layer.width, layer.height, layer.channels)
        , m_light(static_cast<std::size_t>(layer.channels))
    {
    }

    /// `plane` holds the brightest channel within a pixel of the blob.
    template <class IsTaken>
    void take(const Blob& blob, const float* plane, const IsTaken& isTaken)
    {
        if (!blob.bright(m_params.minPeak))
            return;
        if (m_params.splitRatio > 0.0f && blob.pixels.size() >= 2) {
            for (const std::vector<std::size_t>& part : splitRegionByPersistence(
                     blob.pixels, plane, m_layer.width, static_cast<double>(m_params.splitRatio),
                     static_cast<double>(m_params.minPeak)))
                takePart(part, plane, isTaken);
        } else {
            takePart(blob.pixels, plane, isTaken);
        }
    }

private:
    template <class IsTaken>
    void takePart(const std::vector<std::size_t>& part, const float* plane, const IsTaken& isTaken)
    {
        const auto dimmer = [&](std::size_t a, std::size_t b) { return plane[a] < plane[b]; };
        if (plane[*std::max_element(part.begin(), part.end(), dimmer)] < m_params.minPeak)
            return;
        PixelBox(part, m_layer.width).bounds().select(m_mask);
        if (m_mask.hasBlend())
            takeBlended(part, plane, isTaken);
        else if (m_params.companionWipe > 0.0f && part.size() >= 2)
            takeWiped(part, plane, isTaken);
        else
            makeStar(
                part, plane, isTaken, [](std::size_t) { return 1.0; }, kNoGlow);
    }

    template <class IsTaken>
    void takeWiped(const std::vector<std::size_t>& part, const float* plane, const IsTaken& isTaken)
    {
        CompanionWipe wipe(m_layer, plane, part, m_params);
        const bool wipes = wipe.run();
        const auto weight = [&](std::size_t pixel) { return wipe.weight(pixel); };
        const auto glow = [&](std::size_t pixel, float* out) {
            return m_layer.channels <= kMostSampledChannels && wipe.glow(pixel, out);
        };
        if (!wipes)
            makeStar(
                part, plane, isTaken, [](std::size_t) { return 1.0; }, kNoGlow);
        else if (makeStar(part, plane, isTaken, weight, glow))
            for (const std::size_t pixel : wipe.wiped())
                putTextureBack(pixel, 1.0 - weight(pixel));
    }

    template <class IsTaken>
    void takeBlended(const std::vector<std::size_t>& part, const float* plane,
                     const IsTaken& isTaken)
    {
        const GlowBlend blend(m_layer, plane, part, m_mask);
        const auto weight = [&](std::size_t pixel) { return blend.weight(pixel); };
        if (makeStar(part, plane, isTaken, weight, kNoGlow))
            for (const std::size_t pixel : part)
                putTextureBack(pixel, 1.0 - weight(pixel));
    }

    /// A star of the light that `weight` gives it, or that `glow` knows. False when too little is
    /// left.
    template <class IsTaken, class Weight, class Glow>
    bool makeStar(const std::vector<std::size_t>& part, const float* plane, const IsTaken& isTaken,
                  const Weight& weight, const Glow& glow)
    {
        Blob kept;
        kept.clear();
        for (const std::size_t pixel : part)
            kept.take(pixel, column(pixel), row(pixel),
                      static_cast<float>(static_cast<double>(plane[pixel]) * weight(pixel)));
        if (!kept.bright(m_params.minPeak))
            return false;
        const auto sample = [&](std::size_t pixel, float* out) {
            if (glow(pixel, out))
                return;
            const double share = weight(pixel);
            for (int c = 0; c < m_layer.channels; ++c) {
                const float light = m_layer.plane(c)[pixel];
                out[c] = std::isfinite(light)
                             ? static_cast<float>(static_cast<double>(light) * share)
                             : 0.0f;
            }
        };
        Star star;
        star.x = kept.sumX / kept.sum;
        star.y = kept.sumY / kept.sum;
        star.peak = kept.peak;
        m_cutter.cut(star, kept.pixels, kept.bounds, sample, isTaken);
        for (const std::size_t pixel : part)
            giveBack(pixel, static_cast<float>(static_cast<double>(plane[pixel]) * weight(pixel)),
                     sample);
        applyErasureToSprite(star, m_mask);
        m_stars.push_back(std::move(star));
        return true;
    }

    /// Adds to the background what an erasure moves there.
    template <class Sample>
    void giveBack(std::size_t pixel, float value, const Sample& sample)
    {
        if (!m_keepBack || m_mask.empty())
            return;
        double remove = 0.0;
        double keepBack = 0.0;
        m_mask.coverageAt(column(pixel), row(pixel), remove, keepBack, nullptr);
        if (!(keepBack > 0.0))
            return;
        sample(pixel, m_light.data());
        const double share = keepBack * static_cast<double>(m_thresholds.coverage(value));
        for (int c = 0; c < m_keepBack->channels; ++c) {
            const auto from = static_cast<std::size_t>(std::min(c, m_layer.channels - 1));
            m_keepBack->plane(c)[pixel] +=
                static_cast<float>(share * static_cast<double>(m_light[from]));
        }
    }

    /// Where light was wiped, the fine texture of the starless picture shows.
    void putTextureBack(std::size_t pixel, double wiped)
    {
        constexpr double kTooLittle = 0.001;
        if (!m_keepBack || !m_starless || !(wiped > kTooLittle))
            return;
        for (int c = 0; c < m_keepBack->channels; ++c) {
            const float* plane = m_starless->plane(std::min(c, m_starless->channels - 1));
            float& kept = m_keepBack->plane(c)[pixel];
            const double texture = static_cast<double>(plane[pixel]) - meanAround(plane, pixel);
            if (!std::isfinite(texture)) // what an erasure gave back stays
                continue;
            const double sum = static_cast<double>(kept) + wiped * texture;
            kept = static_cast<float>(sum > 0.0 ? std::min(sum, 1.0) : 0.0);
        }
    }

    double meanAround(const float* plane, std::size_t pixel) const
    {
        constexpr int kReach = 3;
        double sum = 0.0;
        int count = 0;
        const int x = column(pixel);
        const int y = row(pixel);
        for (int py = std::max(y - kReach, 0); py <= std::min(y + kReach, m_layer.height - 1); ++py)
            for (int px = std::max(x - kReach, 0); px <= std::min(x + kReach, m_layer.width - 1);
                 ++px, ++count)
                sum += static_cast<double>(
                    plane[static_cast<std::size_t>(py) * static_cast<std::size_t>(m_layer.width) +
                          static_cast<std::size_t>(px)]);
        return sum / count;
    }

    int column(std::size_t pixel) const
    {
        return static_cast<int>(pixel % static_cast<std::size_t>(m_layer.width));
    }
    int row(std::size_t pixel) const
    {
        return static_cast<int>(pixel / static_cast<std::size_t>(m_layer.width));
    }

    static constexpr auto kNoGlow = [](std::size_t, float*) { return false; };

    const Image& m_layer;
    const StarDetectParams& m_params;
    const BlobThresholds& m_thresholds;
    const Image* m_starless;
    ErasureMask m_mask;
    Image* m_keepBack;
    std::vector<Star>& m_stars;
    SpriteCutter m_cutter;
    std::vector<float> m_light; ///< of one pixel, for each channel
};

void clearKeepBack(const Image& layer, Image* keepBack)
{
    if (!keepBack)
        return;
    if (keepBack->usable() && keepBack->sameSize(layer))
        std::fill(keepBack->data.begin(), keepBack->data.end(), 0.0f);
    else
        *keepBack = Image(layer.width, layer.height, layer.channels >= 3 ? 1 : 0);
}

bool meets(const Blob& blob, const std::vector<std::uint8_t>& mask)
{
    return std::any_of(blob.pixels.begin(), blob.pixels.end(),
                       [&](std::size_t pixel) { return mask[pixel] != 0; });
}

} // namespace

LayerStats starsLayerStats(const Image& layer)
{
    LayerStats stats;
    if (layer.usable())
        residualStats(layerPlane(layer), stats.median, stats.sigma);
    return stats;
}

void detectStarsFromResidual(const Image& layer, std::vector<Star>& stars,
                             const StarDetectParams& params, const Image* starlessLayer,
                             const std::vector<StarErasure>* erasures, Image* keepBack,
                             const std::vector<std::uint8_t>* searchMask)
{
    detectStarsFromResidual(layer, stars, params, starlessLayer, erasures, keepBack, searchMask,
                            nullptr);
}

void detectStarsFromResidual(const Image& layer, std::vector<Star>& stars,
                             const StarDetectParams& params, const Image* starlessLayer,
                             const std::vector<StarErasure>* erasures, Image* keepBack,
                             const std::vector<std::uint8_t>* searchMask, const LayerStats* known)
{
    static const std::vector<StarErasure> kNoErasures;
    stars.clear();
    if (!layer.usable())
        return;
    clearKeepBack(layer, keepBack);
    if (searchMask && searchMask->size() != layer.pixelCount())
        return;
    std::vector<float> plane;
    if (!searchMask || !known)
        plane = layerPlane(layer);
    LayerStats stats;
    if (known)
        stats = *known;
    else
        residualStats(plane, stats.median, stats.sigma);
    const BlobThresholds thresholds(stats.median, stats.sigma,
                                    static_cast<double>(params.thresholdSigma));
    LayerStars maker(layer, params, thresholds, starlessLayer, erasures ? *erasures : kNoErasures,
                     keepBack, stars);
    Blob blob;
    if (searchMask && thresholds.high > thresholds.low) {
        MaskedBlobs blobs(layer, thresholds, *searchMask);
        while (blobs.next(blob))
            maker.take(blob, blobs.plane(), [&](std::size_t at) { return blobs.isTaken(at); });
        return;
    }
    if (plane.empty())
        plane = layerPlane(layer);
    BlobFinder finder(plane, layer.width, layer.height, thresholds, BlobFinder::kAnyExtent);
    while (finder.next(blob))
        if (!searchMask || meets(blob, *searchMask))
            maker.take(blob, plane.data(), [&](std::size_t at) { return finder.isTaken(at); });
    if (!searchMask)
        capStarsByBrightness(stars, params.maxStars);
}

} // namespace zre
