#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "engine/stars/erasure_mask.h"

namespace zre {

/// Where a star begins and where it ends, in residual units.
struct BlobThresholds
{
    double high = 0.0; ///< a peak has to reach this
    double low = 0.0;  ///< a blob grows down to, but without, this

    /// `thresholdSigma` times the spread above the median of the plane, and 0.4 of that.
    BlobThresholds(const std::vector<float>& plane, double thresholdSigma);
    BlobThresholds(double median, double sigma, double thresholdSigma);

    /// How much of a pixel of this value is the star's: 0 at `low` to 1 at `high`, a cubic between.
    float coverage(float value) const;
};

/// The extreme coordinates of a blob, all inside it; empty before the first pixel.
struct BlobBounds
{
    int minX = std::numeric_limits<int>::max();
    int minY = std::numeric_limits<int>::max();
    int maxX = std::numeric_limits<int>::min();
    int maxY = std::numeric_limits<int>::min();

    void include(int x, int y);
    /// Selects the erasures that lie over the blob.
    void select(ErasureMask& mask) const;
};

/// Joined pixels above the low threshold about a peak above the high one.
struct Blob
{
    std::vector<std::size_t> pixels; ///< y * width + x, in the order they were reached
    BlobBounds bounds;
    double sum = 0.0; ///< of the values
    double sumX = 0.0;
    double sumY = 0.0;
    float peak = 0.0f;

    void clear();
    void take(std::size_t pixel, int x, int y, float value);

    /// Whether this can be a star; a `minPeak` of 0 sets no floor.
    bool bright(float minPeak) const;
};

/// Walks over a plane and gives its blobs one by one, in raster order of their seeds.
///
/// A seed is an unmarked pixel off the border, at least as high as the high threshold and none of
/// its eight neighbours higher; of a plateau the first pixel serves. A blob grows over the four
/// neighbours. Every pixel is marked when it is reached and is never reached again.
class BlobFinder
{
public:
    static constexpr std::int64_t kAnyExtent = std::numeric_limits<std::int64_t>::max();

    /// Blobs whose extreme coordinates lie more than `maxExtent` apart are passed over, though
    /// their pixels stay marked. `plane`, width * height values, is not owned and has to outlive
    /// this.
    BlobFinder(const std::vector<float>& plane, int width, int height,
               const BlobThresholds& thresholds, std::int64_t maxExtent);

    /// Puts the next blob in `blob`, whose memory is used again; false when there is none.
    bool next(Blob& blob);
    /// Whether a pixel was reached so far, by a blob that was given out or by one passed over.
    bool isTaken(std::size_t pixel) const { return m_taken[pixel] != 0; }

private:
    struct Point
    {
        int x;
        int y;
    };
    bool isSeed(int x, int y) const;
    void reach(int x, int y);
    bool grow(Blob& blob);

    const float* m_plane;
    std::vector<std::uint8_t> m_taken;
    std::vector<Point> m_stack;
    int m_width;
    int m_height;
    int m_x = 1; ///< where the walk goes on
    int m_y = 1;
    float m_high;
    float m_low;
    std::int64_t m_maxExtent;
};

} // namespace zre
