#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/image/image.h"
#include "engine/stars/pixel_box.h"
#include "engine/stars/ring_profile.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// Takes fainter stars out of a bright star's glow: finds their peaks, how far each reaches, and
/// the light that the glow alone would have there.
class CompanionWipe
{
public:
    /// `part` lists the pixels of a blob or of a part of one, `plane` holds the brightest channel
    /// of `layer`. None is owned.
    CompanionWipe(const Image& layer, const float* plane, const std::vector<std::size_t>& part,
                  const StarDetectParams& params);

    /// False when there is one peak only, and nothing to wipe.
    bool run();

    /// The pixels of the wiped companions.
    const std::vector<std::size_t>& wiped() const { return m_wiped; }
    bool isWiped(std::size_t pixel) const;
    /// The share of a pixel's light that stays, 0 to 1.
    double weight(std::size_t pixel) const;
    /// The glow's light at a wiped pixel, for each channel of the layer; false where it is not
    /// known.
    bool glow(std::size_t pixel, float* out) const;

private:
    struct Hill
    {
        std::size_t peak = 0;
        std::int32_t index = 0;
        float level = 0.0f; ///< of its saddle
    };

    void findPeaks();
    void markDiscs();
    void buildRings();
    void tryCompanion(std::int32_t index);
    double hillSum(std::size_t seed, double enough);
    bool findSaddle(Hill& hill);
    std::vector<std::size_t> footprint(const Hill& hill);
    double reachOf(const Hill& hill, const std::vector<std::size_t>& pixels) const;
    void growFootprint(const Hill& hill, std::vector<std::size_t>& pixels);
    std::vector<float> replacement(const std::vector<std::size_t>& pixels);
    double outsideExcess(std::size_t pixel) const;
    void relax(const std::vector<std::size_t>& pixels, std::vector<float>& excess,
               const std::vector<std::uint8_t>& seeded);
    bool isFree(std::size_t pixel) const;
    std::uint32_t nextStamp();

    const Image& m_layer;
    const float* m_plane;
    const std::vector<std::size_t>& m_part;
    const StarDetectParams& m_params;
    PixelBox m_box;
    std::vector<std::size_t> m_peaks; ///< from the brightest down; the first is the star itself
    std::vector<std::uint8_t> m_inPart;
    std::vector<std::int32_t> m_disc;
    std::vector<std::int32_t> m_owner;
    std::vector<float> m_replacement;
    std::vector<std::uint32_t> m_stamps; ///< the walk that reached a cell last
    std::vector<std::int32_t> m_place;   ///< of a cell within the footprint at hand
    std::uint32_t m_stamp = 0;
    std::optional<RingProfile> m_rings;
    double m_primarySum = 0.0;
    double m_budget = 0.0;
    double m_removed = 0.0;
    std::vector<std::size_t> m_wiped;
};

} // namespace zre
