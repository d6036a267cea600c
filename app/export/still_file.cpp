#include "app/export/still_file.h"

#include <array>
#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

#include "engine/fileio/fits_file.h"
#include "engine/fileio/sample_scale.h"
#include "engine/fileio/tiff_file.h"
#include "engine/fileio/whole_file.h"
#include "engine/qt/zre_qt.h"
#include "engine/xisf/xisf.h"

namespace {

std::string nativePath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString fromNative(const std::string& text)
{
    return QString::fromLocal8Bit(text.c_str());
}

bool replaceWith(const QString& path, std::span<const std::uint8_t> bytes, QString& why)
{
    std::string reason;
    const bool written = zre::replaceFile(nativePath(path), bytes, &reason);
    if (!written)
        why = fromNative(reason);
    return written;
}

/// Encodes in memory, so that the file is replaced only by a whole one.
bool writeThroughQt(const QString& path, const QImage& picture, const char* format, int quality,
                    QString& why)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (picture.isNull() || !writer.write(picture)) {
        why =
            picture.isNull() ? QString("not enough memory for this image.") : writer.errorString();
        return false;
    }
    const QByteArray& bytes = buffer.data();
    return replaceWith(path,
                       {reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                        static_cast<std::size_t>(bytes.size())},
                       why);
}

/// An 8-bit picture of one channel, if the image is grey, or three.
QImage toByteImage(const zre::Image& image)
{
    return zre_qt::toQImage(image).convertToFormat(image.channels < 3 ? QImage::Format_Grayscale8
                                                                      : QImage::Format_RGB888);
}

quint16 shortOf(float v)
{
    return static_cast<quint16>(zre::fileio::quantised(v, 65535.0f));
}

QImage toShortImage(const zre::Image& image)
{
    const bool grey = image.channels < 3;
    QImage picture(image.width, image.height,
                   grey ? QImage::Format_Grayscale16 : QImage::Format_RGBX64);
    if (picture.isNull())
        return picture;
    std::size_t at = 0;
    for (int y = 0; y < image.height; ++y) {
        auto* greyRow = reinterpret_cast<quint16*>(picture.scanLine(y));
        auto* colourRow = reinterpret_cast<QRgba64*>(picture.scanLine(y));
        for (int x = 0; x < image.width; ++x, ++at)
            if (grey)
                greyRow[x] = shortOf(image.plane(0)[at]);
            else
                colourRow[x] = qRgba64(shortOf(image.plane(0)[at]), shortOf(image.plane(1)[at]),
                                       shortOf(image.plane(2)[at]), 65535);
    }
    return picture;
}

bool writeXisfFile(const QString& path, const zre::Image& image, const StillOptions& options, int,
                   QString& why)
{
    std::vector<std::uint8_t> bytes;
    if (!zre::writeXisf(image, bytes, options.wcs)) {
        why = "the image is empty.";
        return false;
    }
    return replaceWith(path, bytes, why);
}

bool writeFitsFile(const QString& path, const zre::Image& image, const StillOptions& options, int,
                   QString& why)
{
    std::string reason;
    const bool written = zre::writeFits(nativePath(path), image, options.wcs, &reason);
    if (!written)
        why = fromNative(reason);
    return written;
}

bool writeTiffFile(const QString& path, const zre::Image& image, const StillOptions&, int bits,
                   QString& why)
{
    std::string reason;
    const bool written = zre::writeTiff(nativePath(path), image, bits, &reason);
    if (!written)
        why = fromNative(reason);
    return written;
}

bool writePngFile(const QString& path, const zre::Image& image, const StillOptions&, int bits,
                  QString& why)
{
    constexpr int defaultCompression = -1;
    return writeThroughQt(path, bits == 8 ? toByteImage(image) : toShortImage(image), "png",
                          defaultCompression, why);
}

bool writeJpegFile(const QString& path, const zre::Image& image, const StillOptions& options, int,
                   QString& why)
{
    return writeThroughQt(path, toByteImage(image), "jpg", options.jpegQuality, why);
}

struct StillFormat
{
    const char* suffix;
    std::array<int, 3> bits; ///< the default first; 0 ends the list
    bool (*write)(const QString&, const zre::Image&, const StillOptions&, int bits, QString& why);
};

constexpr std::array kStillFormats{
    StillFormat{"xisf", {32}, writeXisfFile},       StillFormat{"fits", {32}, writeFitsFile},
    StillFormat{"fit", {32}, writeFitsFile},        StillFormat{"fts", {32}, writeFitsFile},
    StillFormat{"tif", {16, 8, 32}, writeTiffFile}, StillFormat{"tiff", {16, 8, 32}, writeTiffFile},
    StillFormat{"png", {16, 8}, writePngFile},      StillFormat{"jpg", {8}, writeJpegFile},
    StillFormat{"jpeg", {8}, writeJpegFile},
};

const StillFormat* formatFor(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const StillFormat& format : kStillFormats)
        if (suffix == QLatin1String(format.suffix))
            return &format;
    return nullptr;
}

QString knownSuffixes()
{
    QStringList names;
    for (const StillFormat& format : kStillFormats)
        names += QString(".") + format.suffix;
    return names.join(", ");
}

/// Finds the writer and the depth, or says why there is none.
const StillFormat* chooseFormat(const QString& path, const zre::Image& image,
                                const StillOptions& options, QString& why)
{
    if (!image.usable()) {
        why = "the image is empty.";
        return nullptr;
    }
    const StillFormat* format = formatFor(path);
    if (!format) {
        why = QString("the file name must end in one of %1.").arg(knownSuffixes());
        return nullptr;
    }
    const QList<int> depths = stillBitDepths(path);
    if (options.bits != 0 && !depths.contains(options.bits)) {
        QStringList texts;
        for (const int depth : depths)
            texts += QString::number(depth);
        why = QString("a .%1 file holds %2 bits, not %3.")
                  .arg(format->suffix, texts.join(" or "), QString::number(options.bits));
        return nullptr;
    }
    return format;
}

} // namespace

bool writeStill(const QString& path, const zre::Image& image, const StillOptions& options,
                QString* error)
{
    QString why;
    bool written = false;
    try {
        if (const StillFormat* format = chooseFormat(path, image, options, why))
            written = format->write(path, image, options,
                                    options.bits != 0 ? options.bits : format->bits[0], why);
    } catch (const std::bad_alloc&) {
        why = "not enough memory for this image.";
    } catch (const std::exception& e) {
        why = e.what();
    }
    if (!written && error)
        *error = QString("Could not write:\n%1\n%2").arg(path, why);
    return written;
}

QList<int> stillBitDepths(const QString& path)
{
    QList<int> depths;
    if (const StillFormat* format = formatFor(path))
        for (const int bits : format->bits)
            if (bits != 0)
                depths += bits;
    return depths;
}
