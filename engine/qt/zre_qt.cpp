#include "engine/qt/zre_qt.h"

#include <algorithm>

namespace zre_qt {

// Clamped before the conversion: a float beyond the int range has no defined conversion, and a NaN
// fails the first comparison.
static uchar byteOf(float v)
{
    const float scaled = v * 255.0f + 0.5f;
    return scaled > 0.0f ? static_cast<uchar>(std::min(scaled, 255.0f)) : uchar{0};
}

QImage toQImage(const zre::Image& image)
{
    if (!image.usable())
        return {};
    QImage picture(image.width, image.height, QImage::Format_RGBA8888);
    if (picture.isNull())
        return {};
    const int last = image.channels - 1;
    for (int y = 0; y < image.height; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width);
        const float* r = image.plane(0) + row;
        const float* g = image.plane(std::min(1, last)) + row;
        const float* b = image.plane(std::min(2, last)) + row;
        uchar* out = picture.scanLine(y);
        for (int x = 0; x < image.width; ++x, out += 4) {
            out[0] = byteOf(r[x]);
            out[1] = byteOf(g[x]);
            out[2] = byteOf(b[x]);
            out[3] = 255;
        }
    }
    return picture;
}

zre::Image fromQImage(const QImage& picture)
{
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    if (rgb.isNull())
        return {};
    zre::Image image(rgb.width(), rgb.height(), 1);
    for (int y = 0; y < image.height; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width);
        const uchar* in = rgb.constScanLine(y);
        for (int x = 0; x < image.width; ++x, in += 3)
            for (int c = 0; c < 3; ++c)
                image.plane(c)[row + static_cast<std::size_t>(x)] =
                    static_cast<float>(in[c]) * 0.003921569f;
    }
    return image;
}

} // namespace zre_qt
