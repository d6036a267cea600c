#include "app/mainwindow/image_pyramid.h"

#include <algorithm>
#include <cmath>
#include <utility>

ImagePyramid::ImagePyramid(QImage picture)
{
    if (!picture.isNull())
        m_levels.push_back(std::move(picture).convertToFormat(QImage::Format_RGB32));
}

int ImagePyramid::levelFor(double scale) const
{
    if (isNull() || !(scale > 0.0) || scale >= 1.0)
        return 0;
    const int shorter = std::min(size().width(), size().height());
    const int last = std::max(0, static_cast<int>(std::log2(shorter)));
    return std::min(last, static_cast<int>(std::floor(-std::log2(scale))));
}

const QImage& ImagePyramid::level(int level)
{
    while (static_cast<int>(m_levels.size()) <= level)
        m_levels.push_back(halved(m_levels.back()));
    return m_levels[static_cast<std::size_t>(level)];
}

// Two bytes of each pixel are summed in one word: four of 255 and the rounding 2 stay below 1024,
// so no byte reaches its neighbour 16 bits up.
static QRgb mean(QRgb a, QRgb b, QRgb c, QRgb d)
{
    constexpr QRgb kEven = 0x00ff00ffu;
    const QRgb low = (a & kEven) + (b & kEven) + (c & kEven) + (d & kEven) + 0x00020002u;
    const QRgb high = ((a >> 8) & kEven) + ((b >> 8) & kEven) + ((c >> 8) & kEven) +
                      ((d >> 8) & kEven) + 0x00020002u;
    return ((low >> 2) & kEven) | (((high >> 2) & kEven) << 8);
}

QImage halved(const QImage& picture)
{
    const int width = picture.width();
    const int height = picture.height();
    QImage half((width + 1) / 2, (height + 1) / 2, QImage::Format_RGB32);
    for (int y = 0; y < half.height(); ++y) {
        const auto* upper = reinterpret_cast<const QRgb*>(picture.constScanLine(2 * y));
        const auto* lower =
            reinterpret_cast<const QRgb*>(picture.constScanLine(std::min(2 * y + 1, height - 1)));
        auto* out = reinterpret_cast<QRgb*>(half.scanLine(y));
        const int pairs = width / 2;
        for (int x = 0; x < pairs; ++x, upper += 2, lower += 2)
            out[x] = mean(upper[0], upper[1], lower[0], lower[1]);
        if (width % 2 != 0)
            out[pairs] = mean(upper[0], upper[0], lower[0], lower[0]);
    }
    return half;
}
