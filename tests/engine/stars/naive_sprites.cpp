#include "tests/engine/stars/naive_sprites.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

using zre::Image;
using zre::Star;

namespace naive {

/// Of a grid of `channels` interleaved samples: doubles for the place, floats for the light.
static float bilinear(const std::vector<float>& grid, const Star& s, int channels, int c, double sx,
                      double sy)
{
    const int x = static_cast<int>(sx);
    const int y = static_cast<int>(sy);
    const auto at = [&](int i, int j) {
        const int pixel = std::min(j, s.boxH - 1) * s.boxW + std::min(i, s.boxW - 1);
        return grid[static_cast<std::size_t>(pixel * channels + c)];
    };
    const float fx = static_cast<float>(sx - x);
    const float top = at(x, y) + (at(x + 1, y) - at(x, y)) * fx;
    const float bottom = at(x, y + 1) + (at(x + 1, y + 1) - at(x, y + 1)) * fx;
    return top + (bottom - top) * static_cast<float>(sy - y);
}

static void drawPixel(const Star& s, Image& image, std::size_t pixel, double sx, double sy)
{
    float a = s.alpha.empty() ? 1.0f : bilinear(s.alpha, s, 1, 0, sx, sy);
    if (a <= 0)
        return;
    a = std::min(a, 1.0f);
    for (int c = 0; c < image.channels; ++c) {
        const float v = bilinear(s.sprite, s, s.channels, c < s.channels ? c : 0, sx, sy) * a;
        if (v > 0)
            image.plane(c)[pixel] = std::min(1.0f, image.plane(c)[pixel] + v);
    }
}

static void drawSprite(const Star& s, Image& image, const SpriteEye& e, const Image* depthMap)
{
    const double cx = e.centerX < 0 ? image.width * 0.5 : e.centerX;
    const double cy = e.centerY < 0 ? image.height * 0.5 : e.centerY;
    const double nearness = s.depth - e.convergence;
    const double g = std::max(nearness, 0.0) * e.zoomGain;
    double dx = e.dirX * 0.5 * e.amount * nearness + (e.zoomGain != 0 ? (s.x - cx) * g : 0.0);
    double dy = e.dirY * 0.5 * e.amount * nearness + (e.zoomGain != 0 ? (s.y - cy) * g : 0.0);
    const double length = std::sqrt(dx * dx + dy * dy);
    if (e.maxShift > 0 && length > 0.5 * e.maxShift) {
        dx *= 0.5 * e.maxShift / length;
        dy *= 0.5 * e.maxShift / length;
    }
    const double scale = std::clamp(1 + g, 0.2, 8.0);
    // Two pixels beyond the box, whose own pixels the mapping back tells.
    const auto from = [&](double centre, double before) {
        return std::max(0, static_cast<int>(std::floor(centre - scale * before)) - 2);
    };
    const auto to = [&](double centre, double behind, int side) {
        return std::min(side, static_cast<int>(std::ceil(centre + scale * behind)) + 3);
    };
    const double ox = s.x - s.boxX;
    const double oy = s.y - s.boxY;
    const int endX = to(s.x + dx, s.boxW - ox, image.width);
    const int endY = to(s.y + dy, s.boxH - oy, image.height);
    for (int py = from(s.y + dy, oy); py < endY; ++py)
        for (int px = from(s.x + dx, ox); px < endX; ++px) {
            const double sx = (px + 0.5 - (s.x + dx)) / scale + ox - 0.5;
            const double sy = (py + 0.5 - (s.y + dy)) / scale + oy - 0.5;
            if (!(sx >= 0 && sx <= s.boxW - 1 && sy >= 0 && sy <= s.boxH - 1))
                continue;
            const std::size_t pixel = static_cast<std::size_t>(py * image.width + px);
            if (depthMap && e.occlusion > 0 && e.occlusion > s.depth &&
                double(depthMap->data[pixel]) > double(s.depth) + 0.001)
                continue;
            drawPixel(s, image, pixel, sx, sy);
        }
}

void drawSprites(const std::vector<Star>& stars, Image& image, const SpriteEye& eye,
                 const Image* depthMap)
{
    for (const Star& s : stars)
        if (s.depth >= 0)
            drawSprite(s, image, eye, depthMap);
}

} // namespace naive
