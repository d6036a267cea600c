#include "engine/stars/companion_wipe.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <unordered_map>

namespace zre {

namespace {

constexpr double kBudgetShare = 0.25; ///< of a part's light that may be wiped
constexpr double kSmallShare = 0.5;   ///< of the star's light that a companion may have
constexpr int kRelaxations = 48;
constexpr double kMostGain = 4.0;        ///< of the glow's colours
constexpr int kMostSeparation = 1 << 20; ///< wider than a picture, and safe to count with

/// Highest value first, of equals the larger pixel.
using Heap = std::priority_queue<std::pair<float, std::size_t>>;

double squared(double value)
{
    return value * value;
}

} // namespace

CompanionWipe::CompanionWipe(const Image& layer, const float* plane,
                             const std::vector<std::size_t>& part, const StarDetectParams& params)
    : m_layer(layer)
    , m_plane(plane)
    , m_part(part)
    , m_params(params)
    , m_box(part, layer.width)
{
}

bool CompanionWipe::run()
{
    findPeaks();
    if (m_peaks.size() < 2)
        return false;
    m_inPart.assign(m_box.size(), 0);
    for (const std::size_t pixel : m_part) {
        m_inPart[m_box.cell(pixel)] = 1;
        m_budget += kBudgetShare * static_cast<double>(m_plane[pixel]);
    }
    m_owner.assign(m_box.size(), -1);
    m_replacement.assign(m_box.size(), 0.0f);
    m_stamps.assign(m_box.size(), 0);
    m_place.assign(m_box.size(), -1);
    markDiscs();
    buildRings();
    m_primarySum = hillSum(m_peaks.front(), std::numeric_limits<double>::infinity());
    for (std::size_t i = m_peaks.size() - 1; i >= 1; --i)
        tryCompanion(static_cast<std::int32_t>(i));
    return true;
}

/// Peaks stand in a grid as wide as they have to be apart, so that each meets its neighbours only.
void CompanionWipe::findPeaks()
{
    std::vector<std::size_t> candidates;
    const auto width = static_cast<std::size_t>(m_layer.width);
    for (const std::size_t pixel : m_part) {
        const int x = m_box.column(pixel);
        const int y = m_box.row(pixel);
        if (x < 1 || y < 1 || x > m_layer.width - 2 || y > m_layer.height - 2)
            continue;
        const float value = m_plane[pixel];
        const float* rows[] = {m_plane + pixel - width, m_plane + pixel, m_plane + pixel + width};
        if (std::none_of(std::begin(rows), std::end(rows), [&](const float* row) {
                return row[-1] > value || row[0] > value || row[1] > value;
            }))
            candidates.push_back(pixel);
    }
    std::sort(candidates.begin(), candidates.end(), [&](std::size_t a, std::size_t b) {
        return m_plane[a] > m_plane[b] || (m_plane[a] == m_plane[b] && a < b);
    });
    const int separation = std::clamp(m_params.companionSeparation, 0, kMostSeparation);
    const int cellSide = separation + 1;
    std::unordered_map<std::int64_t, std::vector<std::size_t>> grid;
    const auto cellOf = [&](int x, int y) { return std::int64_t{y} << 32 | std::int64_t{x}; };
    for (const std::size_t pixel : candidates) {
        const int x = m_box.column(pixel);
        const int y = m_box.row(pixel);
        bool apart = true;
        for (int cellY = y / cellSide - 1; cellY <= y / cellSide + 1; ++cellY)
            for (int cellX = x / cellSide - 1; cellX <= x / cellSide + 1; ++cellX)
                if (const auto found = grid.find(cellOf(cellX + 1, cellY + 1)); found != grid.end())
                    for (const std::size_t kept : found->second)
                        apart = apart &&
                                squared(m_box.column(kept) - x) + squared(m_box.row(kept) - y) >
                                    squared(separation);
        if (!apart)
            continue;
        grid[cellOf(x / cellSide + 1, y / cellSide + 1)].push_back(pixel);
        m_peaks.push_back(pixel);
    }
}

void CompanionWipe::markDiscs()
{
    m_disc.assign(m_box.size(), -1);
    const int reach = std::clamp(m_params.companionSeparation, 0, kMostSeparation);
    const BlobBounds& bounds = m_box.bounds();
    for (std::size_t i = 0; i < m_peaks.size(); ++i) {
        const int x = m_box.column(m_peaks[i]);
        const int y = m_box.row(m_peaks[i]);
        for (int py = std::max(y - reach, bounds.minY); py <= std::min(y + reach, bounds.maxY);
             ++py)
            for (int px = std::max(x - reach, bounds.minX); px <= std::min(x + reach, bounds.maxX);
                 ++px) {
                std::int32_t& label = m_disc[m_box.cell(m_box.pixelAt(px, py))];
                if (label < 0)
                    label = static_cast<std::int32_t>(i);
            }
    }
}

void CompanionWipe::buildRings()
{
    m_rings.emplace(m_layer, m_plane, m_peaks.front());
    for (const std::size_t pixel : m_part)
        if (m_disc[m_box.cell(pixel)] < 1)
            m_rings->add(pixel);
    m_rings->finish();
}

bool CompanionWipe::isFree(std::size_t pixel) const
{
    const std::size_t cell = m_box.cell(pixel);
    return m_inPart[cell] && m_owner[cell] < 0;
}

std::uint32_t CompanionWipe::nextStamp()
{
    if (++m_stamp == 0) {
        std::fill(m_stamps.begin(), m_stamps.end(), 0);
        m_stamp = 1;
    }
    return m_stamp;
}

/// The light of a peak and all that hangs on it below the first pixel that is higher; what exceeds
/// `enough` is not counted to the end.
double CompanionWipe::hillSum(std::size_t seed, double enough)
{
    const std::uint32_t stamp = nextStamp();
    Heap heap;
    const auto push = [&](std::size_t pixel) {
        const std::size_t cell = m_box.cell(pixel);
        if (!m_inPart[cell] || m_stamps[cell] == stamp)
            return;
        m_stamps[cell] = stamp;
        heap.emplace(m_plane[pixel], pixel);
    };
    double sum = 0.0;
    for (push(seed); !heap.empty() && sum <= enough;) {
        const auto [value, pixel] = heap.top();
        heap.pop();
        if (value > m_plane[seed])
            break;
        sum += static_cast<double>(value);
        m_box.forFour(pixel, push);
    }
    return sum;
}

/// Finds how deep the way from a peak to a higher one, or to a wiped companion, leads down; false
/// when there is no such way.
bool CompanionWipe::findSaddle(Hill& hill)
{
    const std::uint32_t stamp = nextStamp();
    Heap heap;
    const auto push = [&](std::size_t pixel) {
        const std::size_t cell = m_box.cell(pixel);
        if (!m_inPart[cell] || m_stamps[cell] == stamp)
            return;
        m_stamps[cell] = stamp;
        heap.emplace(m_plane[pixel], pixel);
    };
    hill.level = m_plane[hill.peak];
    for (push(hill.peak); !heap.empty();) {
        const auto [value, pixel] = heap.top();
        heap.pop();
        hill.level = std::min(hill.level, value);
        if (pixel != hill.peak && (value >= m_plane[hill.peak] || m_owner[m_box.cell(pixel)] >= 0))
            return true;
        m_box.forFour(pixel, push);
    }
    return false;
}

void CompanionWipe::tryCompanion(std::int32_t index)
{
    Hill hill{m_peaks[static_cast<std::size_t>(index)], index, 0.0f};
    const double height = static_cast<double>(m_plane[hill.peak]);
    const double primary = static_cast<double>(m_plane[m_peaks.front()]);
    const double most = kSmallShare * m_primarySum;
    // The saddle first: the peaks of noise and of plateaus end there, where whole hills would have
    // to be walked for each.
    if (!isFree(hill.peak) || !(height < static_cast<double>(m_params.companionWipe) * primary) ||
        !findSaddle(hill) ||
        height - static_cast<double>(hill.level) <
            static_cast<double>(m_params.companionProminence) ||
        hillSum(hill.peak, most) > most)
        return;
    std::vector<std::size_t> pixels = footprint(hill);
    growFootprint(hill, pixels);
    const std::vector<float> left = replacement(pixels);
    for (const std::size_t pixel : pixels)
        m_place[m_box.cell(pixel)] = -1;
    double removed = m_removed;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        removed +=
            std::max(0.0, static_cast<double>(m_plane[pixels[i]]) - static_cast<double>(left[i]));
    if (removed > m_budget)
        return;
    m_removed = removed;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        m_owner[m_box.cell(pixels[i])] = index;
        m_replacement[m_box.cell(pixels[i])] = left[i];
        m_wiped.push_back(pixels[i]);
    }
}

/// The pixels about a peak that stand above its saddle, by a walk in depth.
std::vector<std::size_t> CompanionWipe::footprint(const Hill& hill)
{
    std::vector<std::size_t> pixels;
    std::vector<std::size_t> stack{hill.peak};
    m_place[m_box.cell(hill.peak)] = 0;
    while (!stack.empty()) {
        const std::size_t pixel = stack.back();
        stack.pop_back();
        m_place[m_box.cell(pixel)] = static_cast<std::int32_t>(pixels.size());
        pixels.push_back(pixel);
        m_box.forFour(pixel, [&](std::size_t neighbour) {
            const float value = m_plane[neighbour];
            if (isFree(neighbour) && m_place[m_box.cell(neighbour)] < 0 && value > hill.level &&
                value < m_plane[hill.peak]) {
                m_place[m_box.cell(neighbour)] = 0;
                stack.push_back(neighbour);
            }
        });
    }
    return pixels;
}

double CompanionWipe::reachOf(const Hill& hill, const std::vector<std::size_t>& pixels) const
{
    double reach = 0.0;
    for (const std::size_t pixel : pixels)
        reach = std::max(reach, std::hypot(m_box.column(pixel) - m_box.column(hill.peak),
                                           m_box.row(pixel) - m_box.row(hill.peak)));
    return reach;
}

/// Takes in the slopes below the saddle, breadth first, as long as they do not rise.
void CompanionWipe::growFootprint(const Hill& hill, std::vector<std::size_t>& pixels)
{
    const double farthest = 4.0 * reachOf(hill, pixels) + 6.0;
    const double tolerance = 0.5 * static_cast<double>(m_params.companionProminence);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const double ceiling = static_cast<double>(m_plane[pixels[i]]) + tolerance;
        m_box.forFour(pixels[i], [&](std::size_t neighbour) {
            const std::size_t cell = m_box.cell(neighbour);
            const float value = m_plane[neighbour];
            const bool othersDisc = m_disc[cell] >= 0 && m_disc[cell] != hill.index;
            if (!isFree(neighbour) || m_place[cell] >= 0 || othersDisc ||
                value >= m_plane[hill.peak] || static_cast<double>(value) > ceiling ||
                std::hypot(m_box.column(neighbour) - m_box.column(hill.peak),
                           m_box.row(neighbour) - m_box.row(hill.peak)) > farthest)
                return;
            m_place[cell] = static_cast<std::int32_t>(pixels.size());
            pixels.push_back(neighbour);
        });
    }
}

/// How much brighter than the glow the surroundings of a pixel are; NaN where all is footprint.
double CompanionWipe::outsideExcess(std::size_t pixel) const
{
    double sum = 0.0;
    int count = 0;
    m_box.forFour(pixel, [&](std::size_t neighbour) {
        if (m_place[m_box.cell(neighbour)] >= 0)
            return;
        sum += static_cast<double>(m_plane[neighbour]) - m_rings->at(neighbour);
        ++count;
    });
    return count > 0 ? sum / count : std::nan("");
}

/// What each pixel of a footprint would hold without the companion: the glow, and an excess that
/// joins smoothly to what stands around.
std::vector<float> CompanionWipe::replacement(const std::vector<std::size_t>& pixels)
{
    std::vector<float> excess(pixels.size(), 0.0f);
    std::vector<std::uint8_t> seeded(pixels.size(), 0);
    std::vector<std::size_t> queue;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const double outside = outsideExcess(pixels[i]);
        if (std::isnan(outside))
            continue;
        excess[i] = static_cast<float>(outside);
        seeded[i] = 1;
        queue.push_back(i);
    }
    std::vector<std::uint8_t> reached = seeded;
    for (std::size_t next = 0; next < queue.size(); ++next)
        m_box.forFour(pixels[queue[next]], [&](std::size_t neighbour) {
            const std::int32_t place = m_place[m_box.cell(neighbour)];
            if (place < 0 || reached[static_cast<std::size_t>(place)])
                return;
            reached[static_cast<std::size_t>(place)] = 1;
            excess[static_cast<std::size_t>(place)] = excess[queue[next]];
            queue.push_back(static_cast<std::size_t>(place));
        });
    relax(pixels, excess, seeded);
    std::vector<float> left(pixels.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const double level = std::max(0.0, m_rings->at(pixels[i]) + static_cast<double>(excess[i]));
        left[i] = std::min(m_plane[pixels[i]], static_cast<float>(level));
    }
    return left;
}

void CompanionWipe::relax(const std::vector<std::size_t>& pixels, std::vector<float>& excess,
                          const std::vector<std::uint8_t>& seeded)
{
    for (int round = 0; round < kRelaxations; ++round)
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (seeded[i])
                continue;
            double sum = 0.0;
            int count = 0;
            m_box.forFour(pixels[i], [&](std::size_t neighbour) {
                sum += static_cast<double>(
                    excess[static_cast<std::size_t>(m_place[m_box.cell(neighbour)])]);
                ++count;
            });
            if (count > 0)
                excess[i] = static_cast<float>(sum / count);
        }
}

bool CompanionWipe::isWiped(std::size_t pixel) const
{
    return m_box.contains(m_box.column(pixel), m_box.row(pixel)) && !m_owner.empty() &&
           m_owner[m_box.cell(pixel)] >= 0;
}

double CompanionWipe::weight(std::size_t pixel) const
{
    if (!isWiped(pixel) || !(m_plane[pixel] > 0.0f))
        return 1.0;
    return std::min(1.0, static_cast<double>(m_replacement[m_box.cell(pixel)]) /
                             static_cast<double>(m_plane[pixel]));
}

bool CompanionWipe::glow(std::size_t pixel, float* out) const
{
    constexpr double kNoGlow = 1e-6;
    if (!isWiped(pixel))
        return false;
    const double ring = m_rings->at(pixel);
    if (!(ring > kNoGlow))
        return false;
    const double gain =
        std::min(static_cast<double>(m_replacement[m_box.cell(pixel)]) / ring, kMostGain);
    for (int c = 0; c < m_layer.channels; ++c)
        out[c] = static_cast<float>(m_rings->channelAt(c, pixel) * gain);
    return true;
}

} // namespace zre
