#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "engine/stars/sprite_shape.h"
#include "engine/stars/star_sprites.h"

namespace zre {

namespace {

/// The source samples under each target sample along one axis: `begin[i]` up to, excluding,
/// `end[i]`.
struct Coverage
{
    std::vector<std::size_t> begin;
    std::vector<std::size_t> end;
};

/// In whole numbers, so that a side that keeps its length keeps its samples.
Coverage coverage(int source, int target)
{
    Coverage covered;
    const std::int64_t from = source;
    for (std::int64_t i = 0; i < target; ++i) {
        const std::int64_t begin = i * from / target;
        const std::int64_t end = std::min(((i + 1) * from + target - 1) / target, from);
        covered.begin.push_back(static_cast<std::size_t>(begin));
        covered.end.push_back(static_cast<std::size_t>(std::max(end, begin + 1)));
    }
    return covered;
}

/// Means of interleaved samples over the blocks of `columns` and `rows`.
std::vector<float> blockMeans(const std::vector<float>& samples, std::size_t width,
                              std::size_t channels, const Coverage& columns, const Coverage& rows)
{
    std::vector<float> means;
    means.reserve(rows.begin.size() * columns.begin.size() * channels);
    for (std::size_t j = 0; j < rows.begin.size(); ++j)
        for (std::size_t i = 0; i < columns.begin.size(); ++i)
            for (std::size_t c = 0; c < channels; ++c) {
                double sum = 0.0;
                for (std::size_t y = rows.begin[j]; y < rows.end[j]; ++y)
                    for (std::size_t x = columns.begin[i]; x < columns.end[i]; ++x)
                        sum += double(samples[(y * width + x) * channels + c]);
                const std::size_t count =
                    (rows.end[j] - rows.begin[j]) * (columns.end[i] - columns.begin[i]);
                means.push_back(static_cast<float>(sum / static_cast<double>(count)));
            }
    return means;
}

/// `value` times `scale` to the nearest whole number; none when no `int` holds it.
std::optional<int> scaled(int value, double scale)
{
    const double product = value * scale;
    constexpr double kLimit = std::numeric_limits<int>::max();
    if (!(std::abs(product) < kLimit))
        return std::nullopt;
    return static_cast<int>(std::lround(product));
}

/// Gives `out` the sprite of `star` at another size; it stays without when there is none, or none
/// of that size can be.
void scaleSprite(const Star& star, double scaleX, double scaleY, Star& out)
{
    const std::optional<int> scaledWidth = scaled(star.boxW, scaleX);
    const std::optional<int> scaledHeight = scaled(star.boxH, scaleY);
    if (!hasWholeSprite(star) || !scaledWidth || !scaledHeight)
        return;
    const int width = std::max(1, *scaledWidth);
    const int height = std::max(1, *scaledHeight);
    if (std::int64_t{width} * height > std::numeric_limits<int>::max())
        return;
    const Coverage columns = coverage(star.boxW, width);
    const Coverage rows = coverage(star.boxH, height);
    const std::size_t stride = static_cast<std::size_t>(star.boxW);
    out.sprite = blockMeans(star.sprite, stride, spriteChannels(star), columns, rows);
    if (hasWholeAlpha(star))
        out.alpha = blockMeans(star.alpha, stride, 1, columns, rows);
    out.boxW = width;
    out.boxH = height;
}

} // namespace

void scaleStarSprites(const std::vector<Star>& stars, double scaleX, double scaleY,
                      std::vector<Star>& out)
{
    std::vector<Star> result;
    if (scaleX > 0.0 && scaleY > 0.0) {
        result.resize(stars.size());
        for (std::size_t i = 0; i < stars.size(); ++i) {
            const Star& star = stars[i];
            Star& to = result[i];
            to.x = star.x * scaleX;
            to.y = star.y * scaleY;
            to.depth = star.depth;
            to.peak = star.peak;
            to.distancePc = star.distancePc;
            to.boxX = scaled(star.boxX, scaleX).value_or(0);
            to.boxY = scaled(star.boxY, scaleY).value_or(0);
            to.channels = star.channels;
            to.erased = star.erased;
            scaleSprite(star, scaleX, scaleY, to);
        }
    }
    out = std::move(result);
}

} // namespace zre
