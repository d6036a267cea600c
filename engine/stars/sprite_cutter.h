#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/stars/blob_finder.h"
#include "engine/stars/star.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// Cuts sprites as `profileSprite` does, with scratch that serves star after star and callbacks
/// that the compiler can see through.
class SpriteCutter
{
public:
    /// Sprites of an image of `width` by `height` pixels and as many `channels`.
    SpriteCutter(const StarDetectParams& params, int width, int height, int channels);

    /// Sets box, channels, sprite and alpha of `star`. `sample(pixel, out)` writes a pixel's light
    /// for all channels, `isTaken(pixel)` tells whether it belongs to any blob.
    template <typename Sample, typename IsTaken>
    void cut(Star& star, const std::vector<std::size_t>& region, const BlobBounds& bounds,
             const Sample& sample, const IsTaken& isTaken)
    {
        frame(star, region, bounds);
        float* light = star.sprite.data();
        const std::uint8_t* inRegion = m_region.data();
        for (int y = star.boxY; y < star.boxY + star.boxH; ++y) {
            std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                                static_cast<std::size_t>(star.boxX);
            for (int x = 0; x < star.boxW; ++x, ++pixel, ++inRegion, light += m_channels)
                if (*inRegion || (m_softEdges && !isTaken(pixel)))
                    sample(pixel, light);
        }
        soften(star);
    }

private:
    void frame(Star& star, const std::vector<std::size_t>& region, const BlobBounds& bounds);
    void layRim(Star& star);
    void soften(Star& star);

    int m_width;
    int m_height;
    int m_channels;
    bool m_softEdges;
    int m_maxFeather;
    float m_edgeGlow;
    float m_edgeSoftness;
    int m_margin = 0;                   ///< of the star at hand, pixels
    std::vector<std::uint8_t> m_region; ///< one byte a pixel of the box
    std::vector<std::uint32_t> m_sums;  ///< summed-area table of the region, with a border
    std::vector<float> m_line;          ///< alpha after the horizontal blur
};

} // namespace zre
