#include "engine/stereo/hole_fill.h"

#include <algorithm>
#include <cmath>

#include "engine/stereo/lanes.h"

namespace zre {

namespace {

/// An eye whose offset is shorter has no direction.
constexpr double kNoOffset = 1e-9;
constexpr double kMostSteps = 96.0;

int searchSteps(const Warp& warp, double offset, const Image& img)
{
    double steps = 8.0;
    if (offset > kNoOffset)
        steps = std::max(steps, std::ceil(warp.parallax * 0.5 * offset) + 4.0);
    if (warp.zoom != 0.0) {
        const double diagonal =
            std::sqrt(double(img.width) * img.width + double(img.height) * img.height);
        steps = std::max(steps, std::ceil(0.5 * diagonal * std::fabs(warp.zoom)) + 4.0);
    }
    if (warp.maxDisparity > 0.0)
        steps = std::min(steps, std::ceil(warp.maxDisparity * 0.5) + 4.0);
    return static_cast<int>(std::min(steps, kMostSteps));
}

} // namespace

template <typename Band>
HoleFill<Band>::HoleFill(const Warp& warp, Image& out, Image* outDepth)
    : m_warp(warp)
    , m_out(out)
    , m_outDepth(outDepth)
    , m_offset(std::sqrt(warp.offsetX * warp.offsetX + warp.offsetY * warp.offsetY))
    , m_holes(static_cast<std::size_t>(out.width) + 1)
{
    if (!(m_offset > kNoOffset) && warp.zoom == 0.0)
        return;
    m_steps = searchSteps(warp, m_offset, out);
    if (m_offset > kNoOffset) {
        m_directionX = warp.offsetX / m_offset;
        m_directionY = warp.offsetY / m_offset;
        m_laid = warp.zoom == 0.0 && layWay(m_directionX, m_directionY, m_ahead) &&
                 layWay(-m_directionX, -m_directionY, m_back);
    }
    const double slope = warp.zoom != 0.0 ? 1.0 : std::fabs(m_directionY);
    m_rowReach = static_cast<int>(std::ceil(m_steps * slope)) + 1;
}

/// The whole steps of a search; false when one is so near to between two cells that the rounding of
/// the hole's own place decides.
template <typename Band>
bool HoleFill<Band>::layWay(double vx, double vy, Way& way) const
{
    constexpr double kMargin = 1e-4;
    const auto clear = [](double place) {
        const double fraction = place - std::floor(place);
        return fraction > kMargin && fraction < 1.0 - kMargin;
    };
    for (int k = 1; k <= m_steps; ++k) {
        const double x = k * vx + 0.5;
        const double y = k * vy + 0.5;
        if (!clear(x) || !clear(y))
            return false;
        const Step step{static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))};
        way.left = std::max(way.left, -step.x);
        way.right = std::max(way.right, step.x);
        way.steps.push_back(step);
    }
    return true;
}

template <typename Band>
std::size_t HoleFill<Band>::pixel(int x, int y) const
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_out.width) +
           static_cast<std::size_t>(x);
}

template <typename Band>
void HoleFill<Band>::aimWay(const Band& band, int y, Way& way) const
{
    way.cells.clear();
    way.pixels.clear();
    for (const Step& step : way.steps) {
        const int row = y + step.y;
        if (row < 0 || row >= m_out.height)
            return;
        way.cells.push_back(band.cell(0, row) + step.x);
        way.pixels.push_back(static_cast<std::ptrdiff_t>(pixel(0, row)) + step.x);
    }
}

/// All holes of the row are found, then all their winners, and then the planes are read one after
/// the other, so that the cache misses of many holes overlap.
template <typename Band>
void HoleFill<Band>::fillRow(const Band& band, int y, int left, int right)
{
    listHoles(band, y, left, right);
    if (m_laid) {
        aimWay(band, y, m_ahead);
        aimWay(band, y, m_back);
    }
    m_copies.clear();
    const int firstFree = std::max(m_ahead.left, m_back.left);
    const int endFree = m_out.width - std::max(m_ahead.right, m_back.right);
    for (std::size_t i = 0; i < m_holeCount; ++i) {
        const int x = m_holes[i];
        const Winner winner =
            m_laid && x >= firstFree && x < endFree ? searchWays(band, x) : winnerFor(band, x, y);
        if (std::isfinite(winner.z))
            m_copies.push_back({pixel(x, y), winner.pixel});
        else
            blacken(x, y);
    }
    const auto copy = [this](float* plane) {
        for (const Copy& c : m_copies)
            plane[c.to] = plane[c.from];
    };
    for (int c = 0; c < m_out.channels; ++c)
        copy(m_out.plane(c));
    if (m_outDepth)
        copy(m_outDepth->plane(0));
}

/// Without a branch for each cell, which noise would have mispredicted.
template <typename Band>
void HoleFill<Band>::listHoles(const Band& band, int y, int left, int right)
{
    const auto* const marks = band.marks();
    const std::ptrdiff_t start = band.cell(0, y);
    int* const holes = m_holes.data();
    std::size_t count = 0;
    int x = left;
    const auto list = [&](int end) {
        for (; x < end; ++x) {
            holes[count] = x;
            count += marks[start + x] == Band::kHole ? 1 : 0;
        }
    };
    while (x + kBlock <= right)
        if (anyEqual(marks + (start + x), Band::kHole))
            list(x + kBlock);
        else
            x += kBlock;
    list(right);
    m_holeCount = count;
}

template <typename Band>
void HoleFill<Band>::blacken(int x, int y)
{
    for (int c = 0; c < m_out.channels; ++c)
        m_out.plane(c)[pixel(x, y)] = 0.0f;
}

template <typename Band>
typename HoleFill<Band>::Winner HoleFill<Band>::winnerFor(const Band& band, int x, int y) const
{
    Winner winner;
    if (m_offset > kNoOffset)
        search(band, x, y, m_directionX, m_directionY, winner);
    if (m_warp.zoom != 0.0) {
        const double outX = x - m_warp.centerX;
        const double outY = y - m_warp.centerY;
        const double distance = std::sqrt(outX * outX + outY * outY);
        if (distance > 1e-6)
            search(band, x, y, outX / distance, outY / distance, winner);
    }
    return winner;
}

/// Finds what `search` does along the offset, for a cell from which no way leaves the row. The
/// choice has no branch, which noise would have mispredicted.
template <typename Band>
typename HoleFill<Band>::Winner HoleFill<Band>::searchWays(const Band& band, int x) const
{
    const auto firstLanded = [&band, x](const Way& way) {
        std::size_t k = 0;
        while (k < way.cells.size() && band.marks()[way.cells[k] + x] == Band::kHole)
            ++k;
        return k;
    };
    const auto winnerAt = [&band, x](const Way& way, std::size_t k) {
        return k < way.cells.size() ? Winner{band.depths()[way.cells[k] + x],
                                             static_cast<std::size_t>(way.pixels[k] + x)}
                                    : Winner{};
    };
    const std::size_t stepsAhead = firstLanded(m_ahead);
    const std::size_t stepsBack = firstLanded(m_back);
    const Winner ahead = winnerAt(m_ahead, stepsAhead);
    const Winner back = winnerAt(m_back, stepsBack);
    const bool behind = (back.z < ahead.z) | ((back.z == ahead.z) & (stepsBack < stepsAhead));
    return {behind ? back.z : ahead.z, behind ? back.pixel : ahead.pixel};
}

/// Looks along a direction, step by step both ways, for the first landed pixel of each.
template <typename Band>
void HoleFill<Band>::search(const Band& band, int x, int y, double vx, double vy,
                            Winner& winner) const
{
    bool forward = true;
    bool backward = true;
    for (int k = 1; k <= m_steps && (forward || backward); ++k) {
        forward = forward && !visit(band, x + k * vx, y + k * vy, winner);
        backward = backward && !visit(band, x - k * vx, y - k * vy, winner);
    }
}

/// True when a pixel landed there; it wins when it is the farthest so far.
template <typename Band>
bool HoleFill<Band>::visit(const Band& band, double fx, double fy, Winner& winner) const
{
    // Not below zero, so that truncation rounds down.
    const double cellX = fx + 0.5;
    const double cellY = fy + 0.5;
    if (!(cellX >= 0.0 && cellX < m_out.width && cellY >= 0.0 && cellY < m_out.height))
        return false;
    const int x = static_cast<int>(cellX);
    const int y = static_cast<int>(cellY);
    const std::ptrdiff_t cell = band.cell(x, y);
    if (band.marks()[cell] == Band::kHole)
        return false;
    if (band.depths()[cell] < winner.z)
        winner = {band.depths()[cell], pixel(x, y)};
    return true;
}

template class HoleFill<DepthBand>;
template class HoleFill<SeenBand>;

} // namespace zre
