#include "engine/stars/blob_finder.h"

#include <algorithm>
#include <cmath>

#include "engine/image/multiversion.h"
#include "engine/stars/residual_stats.h"

namespace zre {

/// The low threshold's share of the high one, above the median.
static constexpr double kLowShare = 0.4;
static constexpr double kLeastSpan = 1e-6;

BlobThresholds::BlobThresholds(const std::vector<float>& plane, double thresholdSigma)
{
    double median = 0.0;
    double sigma = 0.0;
    residualStats(plane, median, sigma);
    *this = BlobThresholds(median, sigma, thresholdSigma);
}

BlobThresholds::BlobThresholds(double median, double sigma, double thresholdSigma)
    : high(thresholdSigma * sigma + median)
    , low(kLowShare * thresholdSigma * sigma + median)
{
}

float BlobThresholds::coverage(float value) const
{
    const double t = (static_cast<double>(value) - low) / std::max(high - low, kLeastSpan);
    if (!(t > 0.0))
        return 0.0f;
    return t > 1.0 ? 1.0f : static_cast<float>((3.0 - 2.0 * t) * t * t);
}

void BlobBounds::include(int x, int y)
{
    minX = std::min(minX, x);
    maxX = std::max(maxX, x);
    minY = std::min(minY, y);
    maxY = std::max(maxY, y);
}

void BlobBounds::select(ErasureMask& mask) const
{
    mask.select(minX, minY, maxX - minX + 1.0, maxY - minY + 1.0);
}

void Blob::clear()
{
    pixels.clear();
    bounds = {};
    sum = sumX = sumY = 0.0;
    peak = -std::numeric_limits<float>::infinity();
}

void Blob::take(std::size_t pixel, int x, int y, float value)
{
    pixels.push_back(pixel);
    bounds.include(x, y);
    sum += static_cast<double>(value);
    sumX += x * static_cast<double>(value);
    sumY += y * static_cast<double>(value);
    peak = std::max(peak, value);
}

bool Blob::bright(float minPeak) const
{
    return !(peak < minPeak) && sum > 0.0 && std::isfinite(sum);
}

/// The float that compares with floats as `threshold` does in `value >= threshold`.
static float leastNotBelow(double threshold)
{
    const float nearest = static_cast<float>(threshold);
    if (static_cast<double>(nearest) >= threshold || std::isnan(nearest))
        return nearest;
    return std::nextafter(nearest, std::numeric_limits<float>::infinity());
}

/// The same for `value > threshold`.
static float greatestNotAbove(double threshold)
{
    const float nearest = static_cast<float>(threshold);
    if (static_cast<double>(nearest) <= threshold || std::isnan(nearest))
        return nearest;
    return std::nextafter(nearest, -std::numeric_limits<float>::infinity());
}

/// The first block of eight values from `at` on that holds one of at least `floor`; nearly all of a
/// plane is sky, so that blocks are what the walk sees most.
ZR_MULTIVERSION static std::size_t firstBlockReaching(const float* __restrict values,
                                                      std::size_t at, std::size_t end, float floor)
{
    for (; at + 8 <= end; at += 8) {
        int reached = 0;
        for (std::size_t i = 0; i < 8; ++i)
            reached |= values[at + i] >= floor;
        if (reached)
            return at;
    }
    return at;
}

BlobFinder::BlobFinder(const std::vector<float>& plane, int width, int height,
                       const BlobThresholds& thresholds, std::int64_t maxExtent)
    : m_plane(plane.data())
    , m_taken(plane.size(), 0)
    , m_width(width)
    , m_height(height)
    , m_high(leastNotBelow(thresholds.high))
    , m_low(greatestNotAbove(thresholds.low))
    , m_maxExtent(maxExtent)
{
}

bool BlobFinder::next(Blob& blob)
{
    const int endX = m_width - 1;
    for (; m_y < m_height - 1; ++m_y, m_x = 1) {
        const float* row =
            m_plane + static_cast<std::size_t>(m_y) * static_cast<std::size_t>(m_width);
        while (m_x < endX) {
            m_x = static_cast<int>(firstBlockReaching(row, static_cast<std::size_t>(m_x),
                                                      static_cast<std::size_t>(endX), m_high));
            const int blockEnd = std::min(m_x + 8, endX);
            while (m_x < blockEnd) {
                const int x = m_x++;
                if (!(row[x] >= m_high) || !isSeed(x, m_y))
                    continue;
                reach(x, m_y);
                if (grow(blob))
                    return true;
            }
        }
    }
    return false;
}

bool BlobFinder::isSeed(int x, int y) const
{
    const std::size_t width = static_cast<std::size_t>(m_width);
    const std::size_t at = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
    if (m_taken[at])
        return false;
    const float* above = m_plane + at - width;
    const float* here = m_plane + at;
    const float* below = here + width;
    const float value = *here;
    return !(above[-1] > value || above[0] > value || above[1] > value || here[-1] > value ||
             here[1] > value || below[-1] > value || below[0] > value || below[1] > value);
}

void BlobFinder::reach(int x, int y)
{
    m_taken[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
            static_cast<std::size_t>(x)] = 1;
    m_stack.push_back({x, y});
}

/// Floods from the point on the stack, depth first; false when the blob grows too large.
bool BlobFinder::grow(Blob& blob)
{
    blob.clear();
    const auto tryReach = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= m_width || y >= m_height)
            return;
        const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                               static_cast<std::size_t>(x);
        if (!m_taken[at] && m_plane[at] > m_low)
            reach(x, y);
    };
    while (!m_stack.empty()) {
        const Point at = m_stack.back();
        m_stack.pop_back();
        const std::size_t pixel =
            static_cast<std::size_t>(at.y) * static_cast<std::size_t>(m_width) +
            static_cast<std::size_t>(at.x);
        blob.take(pixel, at.x, at.y, m_plane[pixel]);
        if (std::max(std::int64_t{blob.bounds.maxX} - blob.bounds.minX,
                     std::int64_t{blob.bounds.maxY} - blob.bounds.minY) > m_maxExtent) {
            m_stack.clear();
            return false;
        }
        tryReach(at.x + 1, at.y);
        tryReach(at.x - 1, at.y);
        tryReach(at.x, at.y + 1);
        tryReach(at.x, at.y - 1);
    }
    return true;
}

} // namespace zre
