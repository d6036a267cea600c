#include "engine/stereo/hole_fill.h"

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

struct HoleFill::Winner
{
    bool found = false;
    float z = 0.0f;
    int x = 0;
    int y = 0;
};

HoleFill::HoleFill(const Warp& warp, Image& out, Image* outDepth)
    : m_warp(warp)
    , m_out(out)
    , m_outDepth(outDepth)
    , m_offset(std::sqrt(warp.offsetX * warp.offsetX + warp.offsetY * warp.offsetY))
{
    if (!(m_offset > kNoOffset) && warp.zoom == 0.0)
        return;
    m_steps = searchSteps(warp, m_offset, out);
    if (m_offset > kNoOffset) {
        m_directionX = warp.offsetX / m_offset;
        m_directionY = warp.offsetY / m_offset;
    }
    const double slope = warp.zoom != 0.0 ? 1.0 : std::fabs(m_directionY);
    m_rowReach = static_cast<int>(std::ceil(m_steps * slope)) + 1;
}

void HoleFill::fillRow(const LandingBand& band, int y)
{
    if (m_steps == 0)
        return;
    const std::int32_t* const column = band.column(y);
    int x = 0;
    for (; x + kBlock <= m_out.width; x += kBlock) {
        if (!anyNegative(column + x))
            continue;
        for (int k = x; k < x + kBlock; ++k)
            if (column[k] == LandingBand::kHole)
                fill(band, k, y);
    }
    for (; x < m_out.width; ++x)
        if (column[x] == LandingBand::kHole)
            fill(band, x, y);
}

void HoleFill::fill(const LandingBand& band, int x, int y)
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
    if (!winner.found)
        return;
    const auto index = [this](int column, int row) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_out.width) +
               static_cast<std::size_t>(column);
    };
    for (int c = 0; c < m_out.channels; ++c)
        m_out.plane(c)[index(x, y)] = m_out.plane(c)[index(winner.x, winner.y)];
    if (m_outDepth)
        m_outDepth->plane(0)[index(x, y)] = winner.z;
}

/// Looks along a direction, step by step both ways, for the first landed pixel of each.
void HoleFill::search(const LandingBand& band, int x, int y, double vx, double vy,
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
bool HoleFill::visit(const LandingBand& band, double fx, double fy, Winner& winner) const
{
    // Not below zero, so that truncation rounds down.
    const double cellX = fx + 0.5;
    const double cellY = fy + 0.5;
    if (!(cellX >= 0.0 && cellX < m_out.width && cellY >= 0.0 && cellY < m_out.height))
        return false;
    const int x = static_cast<int>(cellX);
    const int y = static_cast<int>(cellY);
    if (band.column(y)[x] == LandingBand::kHole)
        return false;
    const float z = band.z(y)[x];
    if (!winner.found || z < winner.z)
        winner = {true, z, x, y};
    return true;
}

} // namespace zre
