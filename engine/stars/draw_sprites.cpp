#include <algorithm>
#include <cmath>
#include <cstddef>

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
    double begin() const { return std::floor(landing - scale * center); }
    double end() const { return std::ceil(landing + scale * (boxSide - center)); }
    bool misses() const { return !(end() >= 0.0) || !(begin() < frameSide); }
};

/// The sprite samples under a run of frame pixels along one axis: `at[i]` and `next[i]`, the latter
/// with weight `share[i]`, for frame pixel `first + i`.
struct Taps
{
    std::size_t first = 0;
    std::vector<std::size_t> at;
    std::vector<std::size_t> next;
    std::vector<float> share;

    void find(const Axis& axis)
    {
        at.clear();
        next.clear();
        share.clear();
        const int last = static_cast<int>(std::min(axis.end(), axis.frameSide - 1.0));
        for (int pixel = static_cast<int>(std::max(axis.begin(), 0.0)); pixel <= last; ++pixel) {
            const double source = (pixel + 0.5 - axis.landing) / axis.scale + axis.center - 0.5;
            if (!(source >= 0.0) || !(source <= axis.boxSide - 1.0))
                continue;
            if (at.empty())
                first = static_cast<std::size_t>(pixel);
            const std::size_t whole = static_cast<std::size_t>(source);
            at.push_back(whole);
            next.push_back(std::min(whole + 1, static_cast<std::size_t>(axis.boxSide) - 1));
            share.push_back(static_cast<float>(source - static_cast<double>(whole)));
        }
    }
};

/// A row of the frame falls between two rows of samples.
struct RowPair
{
    const float* top;
    const float* bottom;
    float share;

    float at(std::size_t left, std::size_t right, float across) const
    {
        const float upper = top[left] + (top[right] - top[left]) * across;
        const float lower = bottom[left] + (bottom[right] - bottom[left]) * across;
        return upper + (lower - upper) * share;
    }
};

/// A frame, and what stands in it that may hide stars.
struct Frame
{
    Image& image;
    const Image* depthMap;
    float occlusion;
};

class SpriteDrawer
{
public:
    SpriteDrawer(const Frame& frame, const Motion& motion)
        : m_frame(frame)
        , m_motion(motion)
    {
    }

    void draw(const Star& star)
    {
        const Landing landing = land(star, m_motion);
        if (!landing.finite())
            return;
        const Axis across{landing.x, landing.scale, star.x - star.boxX, star.boxW,
                          m_frame.image.width};
        const Axis down{landing.y, landing.scale, star.y - star.boxY, star.boxH,
                        m_frame.image.height};
        if (across.misses() || down.misses())
            return;
        m_columns.find(across);
        m_rows.find(down);
        for (std::size_t j = 0; j < m_rows.at.size(); ++j)
            drawRow(star, j);
    }

private:
    RowPair rows(const std::vector<float>& samples, std::size_t stride, std::size_t j) const
    {
        return {samples.data() + m_rows.at[j] * stride, samples.data() + m_rows.next[j] * stride,
                m_rows.share[j]};
    }

    void drawRow(const Star& star, std::size_t j)
    {
        const std::size_t channels = spriteChannels(star);
        const std::size_t width = static_cast<std::size_t>(star.boxW);
        const std::size_t start =
            (m_rows.first + j) * static_cast<std::size_t>(m_frame.image.width) + m_columns.first;
        const RowPair light = rows(star.sprite, width * channels, j);
        const bool covered = hasWholeAlpha(star);
        const RowPair cover = covered ? rows(star.alpha, width, j) : RowPair{};
        const bool occluded = m_frame.depthMap && m_frame.occlusion > star.depth;
        const double horizon = double(star.depth) + kDepthMargin;
        for (std::size_t i = 0; i < m_columns.at.size(); ++i) {
            if (occluded && double(m_frame.depthMap->data[start + i]) > horizon)
                continue;
            const std::size_t left = m_columns.at[i];
            const std::size_t right = m_columns.next[i];
            const float share = m_columns.share[i];
            float alpha = covered ? cover.at(left, right, share) : 1.0f;
            if (alpha <= 0.0f)
                continue;
            alpha = alpha > 1.0f ? 1.0f : alpha;
            for (int c = 0; c < m_frame.image.channels; ++c) {
                const std::size_t channel =
                    static_cast<std::size_t>(c) < channels ? static_cast<std::size_t>(c) : 0;
                const float added =
                    light.at(left * channels + channel, right * channels + channel, share) * alpha;
                float& sample = m_frame.image.plane(c)[start + i];
                if (added > 0.0f)
                    sample = sample + added > 1.0f ? 1.0f : sample + added;
            }
        }
    }

    Frame m_frame;
    Motion m_motion;
    Taps m_columns;
    Taps m_rows;
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
    for (const Star& star : stars)
        if (star.depth >= 0.0f && hasWholeSprite(star))
            drawer.draw(star);
}

} // namespace zre
