#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "engine/stars/sprite_blend.h"
#include "engine/stars/sprite_shape.h"
#include "engine/stars/star_sprites.h"

namespace zre {

namespace {

constexpr double kLeastScale = 0.2;
constexpr double kLargestScale = 8.0;
/// Structure hides a star only when it is nearer by more than this.
constexpr double kDepthMargin = 0.001;

/// How the eye moves the stars; see `drawStarSprites`.
struct Motion
{
    double amount;
    double convergence;
    double dirX;
    double dirY;
    double maxShift;
    double zoomGain;
    double centerX;
    double centerY;
};

/// Where a star's centre lands and how much its sprite grows.
struct Landing
{
    double x;
    double y;
    double scale;

    bool finite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(scale); }
};

Landing land(const Star& star, const Motion& motion)
{
    const double nearness = star.depth - motion.convergence;
    const double growth = std::max(nearness, 0.0) * motion.zoomGain;
    double dx = motion.dirX * 0.5 * motion.amount * nearness;
    double dy = motion.dirY * 0.5 * motion.amount * nearness;
    if (motion.zoomGain != 0.0) {
        dx += (star.x - motion.centerX) * growth;
        dy += (star.y - motion.centerY) * growth;
    }
    if (motion.maxShift > 0.0) {
        const double limit = motion.maxShift * 0.5;
        const double length = std::sqrt(dx * dx + dy * dy);
        if (length > limit) {
            dx *= limit / length;
            dy *= limit / length;
        }
    }
    return {star.x + dx, star.y + dy, std::clamp(1.0 + growth, kLeastScale, kLargestScale)};
}

/// One axis of a sprite on its way into the frame.
struct Axis
{
    double landing; ///< of the centre, in the frame
    double scale;   ///< frame pixels a sprite pixel
    double center;  ///< in the box
    int boxSide;    ///< pixels of the sprite
    int frameSide;  ///< pixels of the frame

    double begin() const { return landing - scale * center; }
    double end() const { return landing + scale * (boxSide - center); }
    int firstPixel() const { return begin() > 0.0 ? static_cast<int>(begin()) : 0; }
    int lastPixel() const
    {
        const int last = frameSide - 1;
        return end() < last ? std::min(last, static_cast<int>(end()) + 1) : last;
    }
    bool misses() const { return !(end() > -1.0) || !(begin() < frameSide); }
    double source(int pixel) const { return (pixel + 0.5 - landing) / scale + center - 0.5; }
    bool within(double source) const { return source >= 0.0 && source <= boxSide - 1.0; }
};

/// The frame pixels whose place lies in the box, and their taps. The place rises with the pixel, so
/// that only the ends can fall out.
void findTaps(const Axis& axis, SpriteTaps& taps)
{
    int first = axis.firstPixel();
    int last = axis.lastPixel();
    while (first <= last && !axis.within(axis.source(first)))
        ++first;
    while (last >= first && !axis.within(axis.source(last)))
        --last;
    taps.first = static_cast<std::size_t>(first);
    taps.count = static_cast<std::size_t>(last - first) + 1;
    if (taps.at.size() < taps.count) {
        taps.at.resize(taps.count);
        taps.next.resize(taps.count);
        taps.share.resize(taps.count);
    }
    bool even = true;
    for (std::size_t i = 0; i < taps.count; ++i) {
        const double source = axis.source(first + static_cast<int>(i));
        const int whole = static_cast<int>(source);
        taps.at[i] = whole;
        taps.next[i] = std::min(whole + 1, axis.boxSide - 1);
        taps.share[i] = static_cast<float>(source - whole);
        even &= whole - taps.at[0] == static_cast<int>(i) && taps.share[i] == taps.share[0];
    }
    taps.even = even;
}

/// The largest sample that does not hide a star of that depth.
float horizonOf(float depth)
{
    const double horizon = double(depth) + kDepthMargin;
    const float nearest = static_cast<float>(horizon);
    return double(nearest) > horizon ? std::nextafter(nearest, -1.0f) : nearest;
}

/// A frame, and what stands in it that may hide stars.
struct Frame
{
    Image& image;
    const Image* depthMap;
    float occlusion;
};

/// A star on its way into the frame; without `visible` nothing of it gets there.
struct Placed
{
    const Star* star = nullptr;
    Axis across{};
    Axis down{};
    bool visible = false;
};

Placed place(const Star& star, const Motion& motion, const Image& frame)
{
    Placed placed{.star = &star};
    if (!(star.depth >= 0.0f) || !hasWholeSprite(star))
        return placed;
    const Landing landing = land(star, motion);
    placed.across = {landing.x, landing.scale, star.x - star.boxX, star.boxW, frame.width};
    placed.down = {landing.y, landing.scale, star.y - star.boxY, star.boxH, frame.height};
    placed.visible = landing.finite() && !placed.across.misses() && !placed.down.misses();
    return placed;
}

constexpr std::size_t kLineSamples = 64 / sizeof(float);

/// Adds the cache lines of a row of samples; the processor finds a longer row by itself.
void wantRow(const float* row, std::size_t samples, std::vector<const float*>& wanted)
{
    constexpr std::size_t kMost = 512;
    for (std::size_t i = 0; i < std::min(samples, kMost); i += kLineSamples)
        wanted.push_back(row + i);
}

/// The cache lines that drawing a star will touch.
void wantSamples(const Placed& placed, const Frame& frame, std::vector<const float*>& wanted)
{
    constexpr int kMostRows = 64;
    const Star& star = *placed.star;
    const std::size_t width = static_cast<std::size_t>(frame.image.width);
    const int left = placed.across.firstPixel();
    const int top = placed.down.firstPixel();
    const int bottom = std::min(placed.down.lastPixel(), top + kMostRows);
    // Up to the line of the last pixel, however the row lies on the lines.
    const std::size_t samples =
        std::min(static_cast<std::size_t>(placed.across.lastPixel() - left) + kLineSamples,
                 width - static_cast<std::size_t>(left));
    for (int y = top; y <= bottom; ++y) {
        const std::size_t start =
            static_cast<std::size_t>(y) * width + static_cast<std::size_t>(left);
        for (int c = 0; c < frame.image.channels; ++c)
            wantRow(frame.image.plane(c) + start, samples, wanted);
        if (frame.depthMap && frame.occlusion > star.depth)
            wantRow(frame.depthMap->plane(0) + start, samples, wanted);
    }
    wantRow(star.sprite.data(), star.sprite.size(), wanted);
    wantRow(star.alpha.data(), star.alpha.size(), wanted);
}

class SpriteDrawer
{
public:
    SpriteDrawer(const Frame& frame, const Motion& motion)
        : m_frame(frame)
        , m_motion(motion)
    {
    }

    /// Small sprites lie far from each other in the frame, so that waiting for memory would cost
    /// more than all arithmetic: while a star is drawn, the samples of a later one are asked for.
    void draw(const std::vector<Star>& stars)
    {
        std::array<Placed, kAhead> ahead;
        for (std::size_t i = 0; i < stars.size() + kAhead; ++i) {
            Placed next;
            m_wanted.clear();
            if (i < stars.size())
                next = place(stars[i], m_motion, m_frame.image);
            if (next.visible)
                wantSamples(next, m_frame, m_wanted);
            Placed& slot = ahead[i % kAhead];
            if (slot.visible)
                draw(slot);
            slot = next;
        }
    }

private:
    static constexpr std::size_t kAhead = 2;

    void draw(const Placed& placed)
    {
        const Star& star = *placed.star;
        findTaps(placed.across, m_columns);
        findTaps(placed.down, m_rows);
        const bool occluded = m_frame.depthMap && m_frame.occlusion > star.depth;
        m_blend.add(star, m_columns, m_rows, m_frame.image,
                    {occluded ? m_frame.depthMap : nullptr, horizonOf(star.depth)}, m_wanted);
    }

    Frame m_frame;
    Motion m_motion;
    SpriteTaps m_columns;
    SpriteTaps m_rows;
    std::vector<const float*> m_wanted;
    SpriteBlend m_blend;
};

} // namespace

void drawStarSprites(const std::vector<Star>& stars, Image& image, double amount,
                     double convergence, double dirX, double dirY, double maxShift, double zoomGain,
                     double centerX, double centerY, const Image* depthMap, float occlusion)
{
    if (!image.usable())
        return;
    const Motion motion{amount,
                        convergence,
                        dirX,
                        dirY,
                        maxShift,
                        zoomGain,
                        centerX < 0.0 ? image.width * 0.5 : centerX,
                        centerY < 0.0 ? image.height * 0.5 : centerY};
    const bool occluded =
        depthMap && occlusion > 0.0f && depthMap->usable() && depthMap->sameSize(image);
    SpriteDrawer drawer({image, occluded ? depthMap : nullptr, occlusion}, motion);
    drawer.draw(stars);
}

} // namespace zre
