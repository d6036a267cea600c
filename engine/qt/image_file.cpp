#include "engine/qt/image_file.h"

#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include "engine/fileio/fits_file.h"
#include "engine/fileio/sample_scale.h"
#include "engine/fileio/tiff_file.h"
#include "engine/qt/zre_qt.h"
#include "engine/xisf/xisf.h"

namespace {

const QStringList& fitsSuffixes()
{
    static const QStringList suffixes{"fits", "fit", "fts"};
    return suffixes;
}

/// What a decoder hands over; nothing reaches the caller before all of it is there.
struct Picture
{
    zre::Image image;
    zre::Wcs wcs;
    QByteArray rawBytes;
    bool hasRawBytes = false;
    DecodedFile decoded;
};

std::string nativePath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

int bitsOfXisfFormat(const std::string& format)
{
    struct Row
    {
        const char* format;
        int bits;
    };
    constexpr std::array rows{Row{"UInt8", 8}, Row{"UInt16", 16}, Row{"UInt32", 32},
                              Row{"Float32", 32}};
    for (const Row& row : rows)
        if (format == row.format)
            return row.bits;
    return 0;
}

bool decodeXisf(const QString& path, Picture& picture, std::string& error)
{
    const std::string native = nativePath(path);
    zre::XisfInfo header;
    if (!zre::loadXisf(native, picture.image, picture.wcs, &error) ||
        !zre::readXisfInfo(native, header, &error))
        return false;
    picture.decoded.info = {
        "XISF",        header.sampleFormat, header.width,
        header.height, header.channels,     bitsOfXisfFormat(header.sampleFormat),
        false};
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        picture.rawBytes = file.readAll();
        picture.hasRawBytes = file.error() == QFileDevice::NoError;
    }
    return true;
}

bool decodeFitsFile(const QString& path, Picture& picture, std::string& error)
{
    return zre::loadFits(nativePath(path), picture.image, picture.wcs, &picture.decoded.info,
                         &error);
}

/// 8-bit grey becomes three equal planes, as `zre_qt::fromQImage` makes them of any 8-bit picture.
void widenByteGrey(zre::Image& image, const zre::ImageFileInfo& info)
{
    if (info.sampleFormat != "UInt8" || image.channels != 1)
        return;
    zre::Image wide(image.width, image.height, 1);
    for (int c = 0; c < 3; ++c)
        std::memcpy(wide.plane(c), image.plane(0), image.pixelCount() * sizeof(float));
    image = std::move(wide);
}

bool decodeTiffFile(const QString& path, Picture& picture, std::string& error)
{
    if (!zre::loadTiff(nativePath(path), picture.image, &picture.decoded.info, &error))
        return false;
    widenByteGrey(picture.image, picture.decoded.info);
    return true;
}

zre::Image fromGrey16(const QImage& grey)
{
    zre::Image image(grey.width(), grey.height(), 0);
    float* out = image.plane(0);
    for (int y = 0; y < image.height; ++y) {
        const auto* in = reinterpret_cast<const quint16*>(grey.constScanLine(y));
        for (int x = 0; x < image.width; ++x)
            *out++ = zre::fileio::unitSample(in[x]);
    }
    return image;
}

zre::Image fromColour16(const QImage& colour)
{
    zre::Image image(colour.width(), colour.height(), 1);
    std::size_t at = 0;
    for (int y = 0; y < image.height; ++y) {
        const auto* in = reinterpret_cast<const QRgba64*>(colour.constScanLine(y));
        for (int x = 0; x < image.width; ++x, ++at) {
            image.plane(0)[at] = zre::fileio::unitSample(in[x].red());
            image.plane(1)[at] = zre::fileio::unitSample(in[x].green());
            image.plane(2)[at] = zre::fileio::unitSample(in[x].blue());
        }
    }
    return image;
}

bool isDeep(const QImage& picture)
{
    return picture.format() == QImage::Format_Grayscale16 ||
           picture.pixelFormat().redSize() > 8; // 64 bits a pixel and the floating formats
}

bool decodeThroughQt(const QString& path, Picture& picture, std::string& error)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format().toUpper(); // forgotten once the picture is read
    const QImage read = reader.read();
    if (read.isNull()) {
        error = reader.errorString().toStdString();
        return false;
    }
    const bool deep = isDeep(read);
    if (!deep)
        picture.image = zre_qt::fromQImage(read);
    else if (read.format() == QImage::Format_Grayscale16)
        picture.image = fromGrey16(read);
    else
        picture.image = fromColour16(read.convertToFormat(QImage::Format_RGBX64));
    picture.decoded.info = {format.toStdString(),
                            deep ? "UInt16" : "UInt8",
                            read.width(),
                            read.height(),
                            read.isGrayscale() ? 1 : 3,
                            deep ? 16 : 8,
                            false};
    return true;
}

bool beginsAsTiff(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(4);
    return zre::hasTiffSignature({reinterpret_cast<const std::uint8_t*>(head.constData()),
                                  static_cast<std::size_t>(head.size())});
}

using Decoder = bool (*)(const QString&, Picture&, std::string&);

Decoder decoderFor(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == "xisf")
        return decodeXisf;
    if (fitsSuffixes().contains(suffix))
        return decodeFitsFile;
    // Something else under a TIFF's name is left to those who look at the content.
    if ((suffix == "tif" || suffix == "tiff") && beginsAsTiff(path))
        return decodeTiffFile;
    return decodeThroughQt;
}

/// Why a file that is there cannot be opened at all, or nothing. Of a folder or a missing right the
/// decoders only say that there is no file, and a pipe without a writer holds them up for ever.
std::string whyClosed(const QString& path)
{
    const QFileInfo entry(path);
    if (!entry.exists())
        return {};
    if (!entry.isFile())
        return "this is not a file.";
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? std::string() : file.errorString().toStdString();
}

bool decode(Decoder decoder, const QString& path, Picture& picture, std::string& error)
{
    error = whyClosed(path);
    if (!error.empty())
        return false;
    try {
        if (!decoder(path, picture, error))
            return false;
        if (picture.image.usable())
            return true;
        error = "not enough memory for this image.";
    } catch (const std::bad_alloc&) {
        error = "not enough memory for this image.";
    } catch (const std::exception& e) {
        error = e.what();
    }
    return false;
}

} // namespace

bool decodeImageFile(const QString& path, QImage& preview, zre::Image& image, zre::Wcs& wcs,
                     QByteArray* rawBytes, QString* error)
{
    return decodeImageFile(path, preview, image, wcs, rawBytes, error, StretchMode::Auto, nullptr);
}

bool decodeImageFile(const QString& path, QImage& preview, zre::Image& image, zre::Wcs& wcs,
                     QByteArray* rawBytes, QString* error, StretchMode stretch,
                     DecodedFile* decoded)
{
    const Decoder decoder = decoderFor(path);
    Picture picture;
    std::string reason;
    QImage shown;
    if (decode(decoder, path, picture, reason)) {
        if (stretch == StretchMode::Auto && picture.decoded.info.linear) {
            picture.decoded.stretch = zre::autoStretch(picture.image);
            zre::applyStretch(picture.image, picture.decoded.stretch);
        }
        shown = zre_qt::toQImage(picture.image);
        if (shown.isNull())
            reason = "not enough memory for this image.";
    }
    if (shown.isNull()) {
        if (error)
            *error = QString(decoder == decodeXisf ? "Could not load XISF:\n%1"
                                                   : "Could not load image:\n%1")
                         .arg(QString::fromStdString(reason));
        return false;
    }
    preview = std::move(shown);
    image = std::move(picture.image);
    if (picture.wcs.valid)
        wcs = std::move(picture.wcs);
    if (rawBytes && picture.hasRawBytes)
        *rawBytes = std::move(picture.rawBytes);
    if (decoded)
        *decoded = std::move(picture.decoded);
    return true;
}

static QStringList readableSuffixes()
{
    static const QStringList notPictures{"pdf", "svg", "svgz", "ico", "cur", "icns"};
    QStringList suffixes{"xisf"};
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        suffixes += QString::fromLatin1(format).toLower();
    suffixes += {"tif", "tiff"};
    suffixes += fitsSuffixes();
    suffixes.removeDuplicates();
    suffixes.removeIf([](const QString& suffix) { return notPictures.contains(suffix); });
    return suffixes;
}

const QStringList& imageExts()
{
    static const QStringList suffixes = readableSuffixes();
    return suffixes;
}
