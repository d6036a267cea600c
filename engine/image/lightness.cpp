#include <cmath>
#include <cstddef>
#include <utility>

#include "engine/image/raster.h"

namespace zre {

static float linearised(float v)
{
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
}

static float lightnessOf(double luminance)
{
    const double f = luminance > 0.008856451679035631
                         ? std::cbrt(luminance)
                         : (903.2962962962963 * luminance + 16.0) / 116.0;
    const double lightness = 116.0 * f - 16.0;
    if (lightness < 0.0)
        return 0.0f;
    return lightness > 100.0 ? 1.0f : static_cast<float>(lightness / 100.0);
}

void getLightness(const Image& src, Image& dst)
{
    if (!src.usable())
        return;
    Image out(src.width, src.height, 0);
    const std::size_t count = src.pixelCount();
    const float* red = src.plane(0);
    if (src.channels < 3) {
        for (std::size_t i = 0; i < count; ++i)
            out.data[i] = lightnessOf(static_cast<double>(linearised(red[i])));
    } else {
        const float* green = src.plane(1);
        const float* blue = src.plane(2);
        for (std::size_t i = 0; i < count; ++i)
            out.data[i] = lightnessOf(0.2126 * static_cast<double>(linearised(red[i])) +
                                      0.7152 * static_cast<double>(linearised(green[i])) +
                                      0.0722 * static_cast<double>(linearised(blue[i])));
    }
    dst = std::move(out);
}

} // namespace zre
