#include "engine/qt/image_file.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <functional>

#include <QBuffer>
#include <QFile>
#include <QImageReader>

#include <tiffio.h>

#include "engine/fileio/fits_file.h"
#include "engine/fileio/tiff_file.h"
#include "engine/qt/zre_qt.h"
#include "engine/xisf/xisf.h"
#include "tests/support/testkit.h"

namespace {

QString scratch(const char* name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

struct Opened
{
    QImage preview;
    zre::Image image;
    zre::Wcs wcs;
    QByteArray rawBytes;
    DecodedFile decoded;
};

Opened opened(const QString& path, StretchMode stretch = StretchMode::Auto)
{
    Opened out;
    QString error;
    EXPECT_TRUE(decodeImageFile(path, out.preview, out.image, out.wcs, &out.rawBytes, &error,
                                stretch, &out.decoded))
        << error.toStdString();
    return out;
}

/// A picture without two equal pixels beside each other.
QImage testPicture(QImage::Format format, int width = 23, int height = 14)
{
    QImage picture(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, qRgb(11 * x, 17 * y, 5 * x + 7 * y));
    return picture.convertToFormat(format);
}

TEST(ImageFile, EightBitFilesGiveWhatQImageGives)
{
    for (const QImage::Format format : {QImage::Format_RGB888, QImage::Format_Grayscale8,
                                        QImage::Format_Indexed8, QImage::Format_RGB32})
        for (const char* suffix : {"png", "jpg", "bmp", "ppm", "tif"}) {
            const QString path = scratch("eight.") + suffix;
            if (!testPicture(format).save(path))
                continue; // this format does not carry such a picture
            const Opened out = opened(path);
            EXPECT_TRUE(zrtest::imagesNear(out.image, zre_qt::fromQImage(QImage(path)), 0.0))
                << suffix << " " << format;
            EXPECT_EQ(out.decoded.info.bitDepth, 8) << suffix;
            EXPECT_EQ(out.preview, zre_qt::toQImage(out.image));
        }
}

/// An 8-bit TIFF of 6 by 4 pixels with an orientation tag and a photometric meaning.
QString taggedTiff(int orientation, int photometric)
{
    const QString path = scratch("tagged.tif");
    const int samples = photometric == PHOTOMETRIC_RGB ? 3 : 1;
    TIFF* tiff = TIFFOpen(path.toUtf8().constData(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 6);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 4);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
    if (photometric == PHOTOMETRIC_PALETTE) {
        std::array<std::array<std::uint16_t, 256>, 3> map{};
        for (std::size_t i = 0; i < 256; ++i) {
            map[0][i] = static_cast<std::uint16_t>(i * 257);
            map[1][i] = static_cast<std::uint16_t>(65535 - i * 257);
            map[2][i] = static_cast<std::uint16_t>(i * 100);
        }
        TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
    }
    for (int y = 0; y < 4; ++y) {
        std::array<std::uint8_t, 18> row{};
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<std::uint8_t>(50 * y + 3 * static_cast<int>(i) + 1);
        TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0);
    }
    TIFFClose(tiff);
    return path;
}

TEST(ImageFile, TiffTagsMeanWhatTheyMeanToQImageReader)
{
    for (const int photometric :
         {PHOTOMETRIC_RGB, PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_PALETTE})
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const QString path = taggedTiff(orientation, photometric);
            QImageReader reader(path);
            reader.setAutoTransform(true);
            EXPECT_TRUE(
                zrtest::imagesNear(opened(path).image, zre_qt::fromQImage(reader.read()), 0.0))
                << "orientation " << orientation << " photometric " << photometric;
        }
}

TEST(ImageFile, ColoursMultipliedByTheirAlphaAreTakenBackAsQtTakesThem)
{
    const QString path = scratch("alpha.tif");
    TIFF* tiff = TIFFOpen(path.toUtf8().constData(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 256);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 256);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    const std::uint16_t alpha = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    for (int y = 0; y < 256; ++y) { // every byte that can stand beside every alpha
        std::vector<std::uint8_t> row;
        for (int x = 0; x < 256; ++x)
            for (const int v : {std::min(x, y), y - std::min(x, y), y / 2, y})
                row.push_back(static_cast<std::uint8_t>(v));
        TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0);
    }
    TIFFClose(tiff);
    EXPECT_TRUE(zrtest::imagesNear(opened(path).image, zre_qt::fromQImage(QImage(path)), 0.0));
}

TEST(ImageFile, JpegOrientationTurnsThePicture)
{
    QImage picture(30, 10, QImage::Format_RGB888);
    picture.fill(Qt::black);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            picture.setPixel(x, y, qRgb(255, 255, 255)); // bright on the stored left
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(picture.save(&buffer, "jpg", 100));
    // An EXIF block with orientation 6 behind the start marker: shown turned clockwise.
    const QByteArray exif = QByteArray::fromHex(
        "ffe1002245786966000049492a0008000000010012010300010000000600000000000000");
    jpeg.insert(2, exif);
    const QString path = scratch("turned.jpg");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size());
    file.close();
    const Opened out = opened(path);
    EXPECT_EQ(out.image.width, 10);
    EXPECT_EQ(out.image.height, 30);
    EXPECT_GT(out.image.data[5 * 10 + 5], 0.9f); // and now on top
    EXPECT_LT(out.image.data[25 * 10 + 5], 0.1f);
}

TEST(ImageFile, SixteenBitPngKeepsEveryCount)
{
    QImage colour(300, 4, QImage::Format_RGBX64);
    QImage grey(300, 4, QImage::Format_Grayscale16);
    QImage clear(300, 4, QImage::Format_RGBA64);
    const auto count = [](int x, int y, int c) {
        return static_cast<quint16>(1 + 199 * x + 13 * y + 2000 * c);
    };
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 300; ++x) {
            reinterpret_cast<QRgba64*>(colour.scanLine(y))[x] =
                qRgba64(count(x, y, 0), count(x, y, 1), count(x, y, 2), 65535);
            // What a mask hides keeps its colour: alpha is dropped, not multiplied in.
            reinterpret_cast<QRgba64*>(clear.scanLine(y))[x] =
                qRgba64(count(x, y, 0), count(x, y, 1), count(x, y, 2), 9000);
            reinterpret_cast<quint16*>(grey.scanLine(y))[x] = count(x, y, 0);
        }
    for (const QImage& picture : {colour, grey, clear}) {
        const QString path = scratch("deep.png");
        ASSERT_TRUE(picture.save(path));
        const Opened out = opened(path);
        EXPECT_EQ(out.decoded.info.bitDepth, 16);
        ASSERT_EQ(out.image.channels, picture.format() == QImage::Format_Grayscale16 ? 1 : 3);
        for (int c = 0; c < out.image.channels; ++c)
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 300; ++x)
                    ASSERT_EQ(std::lround(out.image.plane(c)[y * 300 + x] * 65535.0),
                              count(x, y, c));
    }
}

TEST(ImageFile, TheSameCountsHaveTheSameBitsInEveryContainer)
{
    QImage grey(256, 256, QImage::Format_Grayscale16);
    for (int i = 0; i < 65536; ++i)
        reinterpret_cast<quint16*>(grey.scanLine(i / 256))[i % 256] = static_cast<quint16>(i);
    ASSERT_TRUE(grey.save(scratch("same.png")));
    const Opened png = opened(scratch("same.png"));
    ASSERT_TRUE(zre::writeTiff(scratch("same.tif").toStdString(), png.image, 16, nullptr));
    EXPECT_TRUE(zrtest::imagesNear(opened(scratch("same.tif")).image, png.image, 0.0));
}

TEST(ImageFile, XisfBringsItsBytesAndItsSolution)
{
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, 3.6, 30.0, 20, 10, wcs));
    const zre::Image image = zrtest::noise(20, 10, 1, 8);
    std::vector<std::uint8_t> bytes;
    ASSERT_TRUE(zre::writeXisf(image, bytes, &wcs));
    zrtest::writeBytes(zrtest::scratchFolder() / "solved.XISF", bytes);
    const Opened out = opened(scratch("solved.XISF"));
    EXPECT_TRUE(zrtest::imagesNear(out.image, image, 0.0));
    EXPECT_TRUE(out.wcs.valid);
    EXPECT_EQ(out.rawBytes, QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<qsizetype>(bytes.size())));
    EXPECT_EQ(out.decoded.info.container, "XISF");
    EXPECT_EQ(out.decoded.info.bitDepth, 32);
    EXPECT_TRUE(out.decoded.stretch.isIdentity());
}

TEST(ImageFile, LinearFitsIsStretchedAndToldUnlessAskedNotTo)
{
    const auto path = zrtest::sample("w5_wise.fits");
    if (!path)
        GTEST_SKIP() << "no sample photographs here";
    const QString name = QString::fromStdString(path->string());
    const Opened shown = opened(name);
    const Opened plain = opened(name, StretchMode::None);
    EXPECT_FALSE(shown.decoded.stretch.isIdentity());
    EXPECT_TRUE(plain.decoded.stretch.isIdentity());
    EXPECT_NEAR(zre::sampleMedian(shown.image), 0.25, 1e-4);
    EXPECT_LT(zre::sampleMedian(plain.image), 0.01);
    zre::Image again = plain.image;
    zre::applyStretch(again, shown.decoded.stretch);
    EXPECT_TRUE(zrtest::imagesNear(again, shown.image, 0.0));
}

TEST(ImageFile, OtherContentUnderATiffNameIsStillFound)
{
    ASSERT_TRUE(testPicture(QImage::Format_RGB888).save(scratch("really.png")));
    QFile::remove(scratch("really.tif"));
    ASSERT_TRUE(QFile::copy(scratch("really.png"), scratch("really.tif")));
    EXPECT_EQ(opened(scratch("really.tif")).decoded.info.container, "PNG");
}

struct BadFile
{
    const char* name;
    std::optional<std::string_view> content; ///< none: a number that does not parse
    const char* prefix;
};

TEST(ImageFile, WhatCannotBeReadIsAMessageAndChangesNothing)
{
    using namespace std::string_view_literals;
    for (const BadFile& bad :
         {BadFile{"bad.xisf", "no such thing", "Could not load XISF:\n"},
          BadFile{"numbers.xisf", std::nullopt, "Could not load XISF:\n"},
          BadFile{"bad.fits", "SIMPLE  =", "Could not load image:\n"},
          BadFile{"bad.tif", "II*\0\xff\xff\xff\x7f"sv, "Could not load image:\n"},
          BadFile{"bad.png", "\x89PNG", "Could not load image:\n"},
          BadFile{"bad", "text", "Could not load image:\n"}}) {
        const auto path = zrtest::scratchFolder() / bad.name;
        std::string content(bad.content.value_or(""sv));
        if (!bad.content) {
            // The number that does not parse leaves the reader as an exception.
            const std::string xml = "<Image geometry=\"a:b:c\" sampleFormat=\"Float32\" "
                                    "location=\"attachment:1:2\">";
            content = "XISF0100" + std::string(1, static_cast<char>(xml.size())) +
                      std::string(7, '\0') + xml;
        }
        zrtest::writeBytes(path, {content.begin(), content.end()});
        Opened out;
        out.image = zrtest::ramp(2, 2);
        out.rawBytes = "kept";
        QString error;
        EXPECT_FALSE(decodeImageFile(QString::fromStdString(path.string()), out.preview, out.image,
                                     out.wcs, &out.rawBytes, &error));
        EXPECT_TRUE(error.startsWith(bad.prefix)) << error.toStdString();
        EXPECT_GT(error.size(), static_cast<qsizetype>(std::strlen(bad.prefix)));
        EXPECT_TRUE(zrtest::imagesNear(out.image, zrtest::ramp(2, 2), 0.0));
        EXPECT_EQ(out.rawBytes, "kept");
        EXPECT_TRUE(out.preview.isNull());
    }
    for (const char* name : {"absent.xisf", "absent.fits", "absent.tif", "absent.png"}) {
        Opened out;
        EXPECT_FALSE(
            decodeImageFile(scratch(name), out.preview, out.image, out.wcs, nullptr, nullptr));
    }
}

TEST(ImageFile, EveryTruncationOfAPngIsSurvived)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(testPicture(QImage::Format_RGB888, 7, 5).save(&buffer, "png"));
    for (qsizetype length = 0; length < png.size(); ++length) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(png.constData());
        zrtest::writeBytes(zrtest::scratchFolder() / "cut.png", {bytes, bytes + length});
        Opened out;
        if (decodeImageFile(scratch("cut.png"), out.preview, out.image, out.wcs, nullptr,
                            nullptr)) {
            EXPECT_EQ(out.image.width, 7);
        }
    }
}

TEST(ImageFile, EverySuffixIsOfferedOnceAndVectorsAndIconsAreNot)
{
    const QStringList& suffixes = imageExts();
    EXPECT_EQ(suffixes.first(), "xisf");
    EXPECT_EQ(QSet<QString>(suffixes.begin(), suffixes.end()).size(), suffixes.size());
    for (const char* wanted : {"png", "jpg", "tif", "tiff", "fits", "fit", "fts"})
        EXPECT_TRUE(suffixes.contains(wanted)) << wanted;
    for (const char* unwanted : {"pdf", "svg", "svgz", "ico", "cur", "icns"})
        EXPECT_FALSE(suffixes.contains(unwanted)) << unwanted;
    for (const QString& suffix : suffixes)
        EXPECT_EQ(suffix, suffix.toLower());
    EXPECT_EQ(suffixes.mid(suffixes.size() - 3), (QStringList{"fits", "fit", "fts"}));
}

TEST(ImageFile, RealPhotographsGiveWhatQImageGives)
{
    for (const char* name : {"bubble_narrowband_hst.png", "m51_hst.jpg"}) {
        const auto path = zrtest::sample(name);
        if (!path)
            GTEST_SKIP() << "no sample photographs here";
        const QString file = QString::fromStdString(path->string());
        EXPECT_TRUE(zrtest::imagesNear(opened(file).image, zre_qt::fromQImage(QImage(file)), 0.0))
            << name;
    }
}

TEST(ImageFile, FoldersAndPipesAreNamedAsSuchAndHoldNothingUp)
{
    for (const char* suffix : {"png", "tif", "fits", "xisf"}) {
        const std::filesystem::path folder =
            zrtest::scratchFolder() / (std::string("folder.") + suffix);
        std::filesystem::create_directories(folder);
        const std::filesystem::path pipe =
            zrtest::scratchFolder() / (std::string("pipe.") + suffix);
        std::filesystem::remove(pipe);
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        for (const auto& path : {folder, pipe}) {
            Opened out;
            QString error;
            EXPECT_FALSE(decodeImageFile(QString::fromStdString(path.string()), out.preview,
                                         out.image, out.wcs, nullptr, &error));
            EXPECT_TRUE(error.endsWith("this is not a file.")) << path << error.toStdString();
        }
    }
}

TEST(ImageFile, AMissingRightIsNotTakenForAMissingFile)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may read everything";
    for (const char* name : {"closed.png", "closed.tif", "closed.fits", "closed.xisf"}) {
        const QString path = scratch(name);
        testPicture(QImage::Format_RGB888).save(path, "png");
        QFile::setPermissions(path, {});
        Opened out;
        QString error;
        EXPECT_FALSE(decodeImageFile(path, out.preview, out.image, out.wcs, nullptr, &error));
        EXPECT_TRUE(error.endsWith(std::strerror(EACCES))) << error.toStdString();
    }
}

} // namespace
