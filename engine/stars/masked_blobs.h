#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "engine/image/image.h"
#include "engine/stars/blob_finder.h"
#include "engine/stars/layer_plane.h"

namespace zre {

/// The blobs of a stars layer that meet a mask, in the order and with the pixels that `BlobFinder`
/// would give them, at the cost of these blobs and their neighbours.
///
/// It works from what a blob is: joined pixels above the low threshold among which there is a seed;
/// the first seed in raster order is where the walk over a whole plane would meet it.
class MaskedBlobs
{
public:
    /// `mask` has one byte a pixel; the high threshold lies above the low one. Neither image nor
    /// mask is owned.
    MaskedBlobs(const Image& layer, const BlobThresholds& thresholds,
                const std::vector<std::uint8_t>& mask);

    bool next(Blob& blob);
    /// Whether a walk over the whole plane would have reached the pixel by now.
    bool isTaken(std::size_t pixel);

    /// The brightest channel, filled in for the blobs given out and the pixels beside them.
    const float* plane() const { return m_plane.data(); }

private:
    static constexpr std::size_t kNoSeed = std::numeric_limits<std::size_t>::max();

    /// The component of a pixel, from 1; 0 for one at or below the low threshold.
    std::uint32_t componentOf(std::size_t pixel);
    bool isSeed(std::size_t pixel) const;
    void grow(std::size_t seed, Blob& blob);
    void fillPlane(const BlobBounds& bounds);
    template <class Visit>
    void forFour(std::size_t pixel, const Visit& visit) const;

    const Image& m_layer;
    std::size_t m_width;
    std::size_t m_height;
    double m_high;
    double m_low;
    LazyZeros<std::uint32_t> m_component; ///< with `kGrown` once it was given out
    LazyZeros<float> m_plane;
    std::vector<std::size_t> m_seeds; ///< of each component, the first in raster order
    std::vector<std::size_t> m_order; ///< the seeds to be given out
    std::size_t m_next = 0;
    std::size_t m_current = 0; ///< the seed given out last
    std::vector<std::size_t> m_stack;
};

} // namespace zre
