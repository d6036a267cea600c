#include "engine/qt/zre_qt.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <new>
#include <optional>

#include "engine/image/multiversion.h"

namespace zre_qt {

namespace {

/// Where the bytes of a pixel stand in a word of 32 bits; the highest is its opacity.
struct PixelShifts
{
    int red;
    int green;
    int blue;
};

/// Rows of the three channels that are shown.
struct Row
{
    const float* red;
    const float* green;
    const float* blue;
    int width;
};

// Clamped before the conversion: a float beyond the int range has no defined conversion, and a NaN
// fails the last comparison.
ZR_KERNEL_STEP quint32 byteOf(float v)
{
    const float scaled = v * 255.0f + 0.5f;
    const float bounded = scaled < 255.0f ? scaled : 255.0f;
    return static_cast<quint32>(static_cast<int>(scaled > 0.0f ? bounded : 0.0f));
}

ZR_MULTIVERSION void packRow(const Row& row, const PixelShifts& shifts, quint32* __restrict out)
{
    const float* const red = row.red;
    const float* const green = row.green;
    const float* const blue = row.blue;
    const PixelShifts at = shifts;
    const int width = row.width;
    for (int x = 0; x < width; ++x)
        out[x] = byteOf(red[x]) << at.red | byteOf(green[x]) << at.green |
                 byteOf(blue[x]) << at.blue | 0xff000000u;
}

/// The three bytes of Format_RGB888.
ZR_MULTIVERSION void closeRow(const Row& row, uchar* __restrict out)
{
    const float* const red = row.red;
    const float* const green = row.green;
    const float* const blue = row.blue;
    const std::ptrdiff_t width = row.width;
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        out[3 * x] = static_cast<uchar>(byteOf(red[x]));
        out[3 * x + 1] = static_cast<uchar>(byteOf(green[x]));
        out[3 * x + 2] = static_cast<uchar>(byteOf(blue[x]));
    }
}

/// Nothing for a format that is not made of words.
std::optional<PixelShifts> shiftsOf(QImage::Format format)
{
    static_assert(std::endian::native == std::endian::little);
    switch (format) {
    case QImage::Format_RGBA8888:
        return PixelShifts{0, 8, 16};
    case QImage::Format_RGB32:
        return PixelShifts{16, 8, 0};
    default:
        return std::nullopt;
    }
}

void freePixels(void* pixels)
{
    ::operator delete(pixels);
}

/// A picture whose pixels come from `operator new`, which programs replace for large blocks; null
/// when memory runs out.
QImage newPicture(int width, int height, QImage::Format format)
{
    const qsizetype rowBits = qsizetype{width} * QImage::toPixelFormat(format).bitsPerPixel();
    if (rowBits > std::numeric_limits<int>::max() - 31) // which QImage does not take
        return {};
    const qsizetype rowBytes = (rowBits + 31) / 32 * 4;
    void* const pixels = ::operator new(static_cast<std::size_t>(rowBytes * height), std::nothrow);
    if (!pixels)
        return {};
    return QImage(static_cast<uchar*>(pixels), width, height, rowBytes, format, freePixels, pixels);
}

} // namespace

QImage toQImage(const zre::Image& image, QImage::Format format)
{
    const std::optional<PixelShifts> shifts = shiftsOf(format);
    if (!image.usable() || (!shifts && format != QImage::Format_RGB888))
        return {};
    QImage picture = newPicture(image.width, image.height, format);
    if (picture.isNull())
        return {};
    const int last = image.channels - 1;
    for (int y = 0; y < image.height; ++y) {
        const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width);
        const Row row{image.plane(0) + at, image.plane(std::min(1, last)) + at,
                      image.plane(std::min(2, last)) + at, image.width};
        uchar* const out = picture.scanLine(y);
        if (shifts)
            packRow(row, *shifts, reinterpret_cast<quint32*>(out));
        else
            closeRow(row, out);
    }
    return picture;
}

QImage toQImage(const zre::Image& image)
{
    return toQImage(image, QImage::Format_RGBA8888);
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
