#pragma once

#include <cstddef>
#include <vector>

#include "engine/image/image.h"

namespace zre {

/// How a star's light falls off: the median of its pixels in rings of two pixels about its centre,
/// for the brightest channel and for each channel of its own.
class RingProfile
{
public:
    /// `plane` holds the brightest channel of `layer`. Neither is owned.
    RingProfile(const Image& layer, const float* plane, std::size_t centre);

    /// Takes a pixel into account; `finish` follows the last.
    void add(std::size_t pixel);
    void finish();

    /// The level at a pixel, read between the nearest rings that hold samples; 0 without any.
    double at(std::size_t pixel) const { return read(0, radius(pixel)); }
    /// The same of one channel.
    double channelAt(int channel, std::size_t pixel) const
    {
        return read(static_cast<std::size_t>(channel) + 1, radius(pixel));
    }

private:
    static constexpr double kRingWidth = 2.0;

    double radius(std::size_t pixel) const;
    double read(std::size_t level, double radius) const;

    const Image& m_layer;
    const float* m_plane;
    std::size_t m_centre;
    std::vector<std::vector<std::size_t>> m_rings; ///< the pixels of each
    std::vector<std::vector<double>> m_levels; ///< of each ring: plane and channels; empty for none
    std::vector<int> m_below; ///< the nearest filled ring at or below each; -1 for none
    std::vector<int> m_above; ///< the nearest above
};

} // namespace zre
