#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/stars/sprite_shape.h"
#include "engine/stars/star_sprites.h"

namespace zre {

namespace {

/// Below it a pixel has no colour worth taking, nor light worth colouring.
constexpr double kDark = 1e-5;

double luma(double red, double green, double blue)
{
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

float unit(double value)
{
    return static_cast<float>(value > 0.0 ? std::min(value, 1.0) : 0.0);
}

/// `light` gets the hue of the source pixel and keeps its luma.
void recolorPixel(const Image& source, std::size_t pixel, float* light)
{
    const double brightness = luma(light[0], light[1], light[2]);
    const std::array<double, 3> color{source.plane(0)[pixel], source.plane(1)[pixel],
                                      source.plane(2)[pixel]};
    const double reference = luma(color[0], color[1], color[2]);
    if (!(brightness > kDark) || !(reference > kDark))
        return;
    const double gain = brightness / reference;
    for (std::size_t c = 0; c < color.size(); ++c)
        light[c] = unit(color[c] * gain);
}

/// The part of a box side that lies inside an image side.
struct Span
{
    std::int64_t begin;
    std::int64_t end;
};

Span inside(int start, int length, int side)
{
    const std::int64_t first = start;
    return {std::max<std::int64_t>(0, -first), std::min<std::int64_t>(length, side - first)};
}

void recolorSprite(Star& star, const Image& source)
{
    const Span rows = inside(star.boxY, star.boxH, source.height);
    const Span columns = inside(star.boxX, star.boxW, source.width);
    for (std::int64_t j = rows.begin; j < rows.end; ++j)
        for (std::int64_t i = columns.begin; i < columns.end; ++i)
            recolorPixel(
                source, static_cast<std::size_t>((star.boxY + j) * source.width + star.boxX + i),
                &star.sprite[static_cast<std::size_t>((j * star.boxW + i) * star.channels)]);
}

/// The stars' sample that a pixel of the starless picture sees along one axis.
std::size_t nearestIndex(int position, int side, int starsSide)
{
    const std::int64_t at = std::int64_t{position} * starsSide / side;
    return static_cast<std::size_t>(std::min<std::int64_t>(at, starsSide - 1));
}

const float* planeOrFirst(const Image& img, int channel)
{
    return img.plane(channel < img.channels ? channel : 0);
}

float clippedSum(float a, float b)
{
    const float sum = a + b;
    return sum > 1.0f ? 1.0f : sum;
}

} // namespace

void recolorStarSpritesFromSource(std::vector<Star>& stars, const Image& source)
{
    if (!source.usable() || source.channels < 3)
        return;
    for (Star& star : stars)
        if (star.channels >= 3 && hasWholeSprite(star))
            recolorSprite(star, source);
}

Image compositeStarlessStars(const Image& starless, const Image& stars)
{
    if (!starless.usable())
        return {};
    const bool color = starless.channels >= 3 || (stars.usable() && stars.channels >= 3);
    Image out(starless.width, starless.height, color ? 1 : 0);
    const std::size_t width = static_cast<std::size_t>(out.width);
    std::vector<std::size_t> columns(width);
    for (std::size_t x = 0; x < width && stars.usable(); ++x)
        columns[x] = nearestIndex(static_cast<int>(x), out.width, stars.width);
    for (int c = 0; c < out.channels; ++c) {
        const float* base = planeOrFirst(starless, c);
        float* sum = out.plane(c);
        if (!stars.usable()) {
            std::copy_n(base, out.pixelCount(), sum);
            continue;
        }
        for (int y = 0; y < out.height; ++y, base += width, sum += width) {
            const float* const light =
                planeOrFirst(stars, c) +
                nearestIndex(y, out.height, stars.height) * static_cast<std::size_t>(stars.width);
            for (std::size_t x = 0; x < width; ++x)
                sum[x] = clippedSum(base[x], light[columns[x]]);
        }
    }
    return out;
}

} // namespace zre
