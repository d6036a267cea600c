#include "app/export/still_file.h"

#include <cmath>
#include <limits>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include "engine/qt/image_file.h"
#include "engine/qt/zre_qt.h"
#include "tests/support/testkit.h"

namespace {

QString scratch(const QString& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name.toStdString()).string());
}

bool written(const QString& path, const zre::Image& image, const StillOptions& options = {})
{
    QString error;
    const bool done = writeStill(path, image, options, &error);
    EXPECT_EQ(done, error.isEmpty()) << error.toStdString();
    return done;
}

zre::Image read(const QString& path, zre::ImageFileInfo* info = nullptr, zre::Wcs* wcs = nullptr)
{
    QImage preview;
    zre::Image image;
    zre::Wcs unused;
    QString error;
    DecodedFile decoded;
    EXPECT_TRUE(decodeImageFile(path, preview, image, wcs ? *wcs : unused, nullptr, &error,
                                StretchMode::Auto, &decoded))
        << error.toStdString();
    if (info)
        *info = decoded.info;
    return image;
}

struct RoundTrip
{
    const char* name;
    int bits;
    int storedBits;
    double tolerance;
    bool greyStaysOnePlane;
};

class StillFormats : public testing::TestWithParam<RoundTrip>
{
};

TEST_P(StillFormats, WhatIsWrittenIsReadBackAtItsDepth)
{
    const RoundTrip& c = GetParam();
    for (const int model : {0, 1}) {
        const zre::Image image = zrtest::noise(57, 31, model, 21);
        const QString path = scratch(c.name);
        StillOptions options;
        options.bits = c.bits;
        ASSERT_TRUE(written(path, image, options));
        zre::ImageFileInfo info;
        zre::Image back = read(path, &info);
        EXPECT_EQ(info.bitDepth, c.storedBits);
        EXPECT_EQ(info.channels, model == 0 ? 1 : 3) << "as stored";
        ASSERT_EQ(back.channels, model == 0 && c.greyStaysOnePlane ? 1 : 3);
        if (model == 0 && back.channels == 3) {
            back.data.resize(back.pixelCount());
            back.channels = 1;
            back.colorModel = 0;
        }
        EXPECT_TRUE(zrtest::imagesNear(back, image, c.tolerance));
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, StillFormats,
                         testing::Values(RoundTrip{"a.xisf", 0, 32, 0.0, true},
                                         RoundTrip{"a.fits", 0, 32, 0.0, true},
                                         RoundTrip{"a.FIT", 32, 32, 0.0, true},
                                         RoundTrip{"a.tif", 0, 16, 0.5001 / 65535, true},
                                         RoundTrip{"a.tiff", 8, 8, 0.5001 / 255, false},
                                         RoundTrip{"a.tif", 32, 32, 0.0, true},
                                         RoundTrip{"a.png", 0, 16, 0.5001 / 65535, true},
                                         RoundTrip{"a.PNG", 8, 8, 0.5001 / 255, false}),
                         [](const auto& testInfo) {
                             return QString(testInfo.param.name).replace('.', '_').toStdString() +
                                    std::to_string(testInfo.param.bits);
                         });

TEST(StillFile, JpegIsCloseAtHighQuality)
{
    zre::Image image = zrtest::ramp(64, 48);
    StillOptions options;
    options.jpegQuality = 100;
    ASSERT_TRUE(written(scratch("a.jpg"), image, options));
    const zre::Image back = read(scratch("a.jpg"));
    for (std::size_t i = 0; i < image.data.size(); ++i)
        ASSERT_NEAR(back.data[i], image.data[i], 2.0 / 255);
}

TEST(StillFile, EightBitsAreTheBytesOfThePreview)
{
    // The same rounding as on the screen, and no colour profile that would shift it.
    const zre::Image image = zrtest::noise(33, 12, 1, 4);
    StillOptions options;
    options.bits = 8;
    ASSERT_TRUE(written(scratch("b.png"), image, options));
    EXPECT_EQ(QImage(scratch("b.png")).convertToFormat(QImage::Format_RGBA8888),
              zre_qt::toQImage(image));
}

TEST(StillFile, AnySampleCanBeWritten)
{
    zre::Image image = zrtest::noise(9, 9, 1, 6);
    image.data[0] = std::numeric_limits<float>::quiet_NaN();
    image.data[1] = -HUGE_VALF;
    image.data[2] = 1e30f;
    for (const char* name : {"odd.png", "odd.tif", "odd.jpg"}) {
        ASSERT_TRUE(written(scratch(name), image)) << name;
        if (QString(name) != "odd.jpg") {
            const zre::Image back = read(scratch(name));
            EXPECT_EQ(back.data[0], 0.0f);
            EXPECT_EQ(back.data[1], 0.0f);
            EXPECT_EQ(back.data[2], 1.0f);
        }
    }
}

TEST(StillFile, TheSolutionTravelsWhereTheFormatHasRoom)
{
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(310.0, 44.0, 2.5, 12.0, 40, 30, wcs));
    StillOptions options;
    options.wcs = &wcs;
    for (const char* name : {"s.xisf", "s.fits"}) {
        ASSERT_TRUE(written(scratch(name), zrtest::noise(40, 30, 1, 7), options));
        zre::Wcs back;
        read(scratch(name), nullptr, &back);
        double ra = 0.0;
        double dec = 0.0;
        double x = 0.0;
        double y = 0.0;
        ASSERT_TRUE(back.valid && back.imageToCelestial(3.0, 28.0, ra, dec)) << name;
        ASSERT_TRUE(wcs.celestialToImage(ra, dec, x, y));
        EXPECT_NEAR(x, 3.0, 1e-7) << name;
        EXPECT_NEAR(y, 28.0, 1e-7) << name;
    }
}

TEST(StillFile, RefusalsNameWhatWouldWork)
{
    const zre::Image image = zrtest::noise(4, 4, 1, 1);
    QString error;
    EXPECT_FALSE(writeStill(scratch("a.webm"), image, {}, &error));
    for (const char* suffix : {".xisf", ".fits", ".tif", ".png", ".jpg"})
        EXPECT_TRUE(error.contains(suffix)) << error.toStdString();
    StillOptions deep;
    deep.bits = 32;
    EXPECT_FALSE(writeStill(scratch("deep.png"), image, deep, &error));
    EXPECT_TRUE(error.contains("16 or 8")) << error.toStdString();
    EXPECT_FALSE(writeStill(scratch("empty.png"), zre::Image(), {}, &error));
    EXPECT_FALSE(QFileInfo::exists(scratch("deep.png")));
    EXPECT_FALSE(QFileInfo::exists(scratch("empty.png")));
    EXPECT_FALSE(writeStill(scratch("a.webm"), image, {}, nullptr));
}

TEST(StillFile, FailedWriteLeavesTheOldFileAndNoOther)
{
    const QDir folder(scratch("kept"));
    ASSERT_TRUE(QDir().mkpath(folder.path()));
    const zre::Image image = zrtest::noise(6, 6, 1, 1);
    for (const char* suffix : {"xisf", "fits", "tif", "png", "jpg"}) {
        // A folder of that name: everything works but the last step.
        ASSERT_TRUE(folder.mkdir(QString("taken.") + suffix));
        EXPECT_FALSE(writeStill(folder.filePath(QString("taken.") + suffix), image, {}, nullptr));
        EXPECT_FALSE(
            writeStill(folder.filePath(QString("no/where.") + suffix), image, {}, nullptr));
    }
    EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 5);
}

TEST(StillFile, AWriteThroughALinkKeepsTheLinkAndThePermissions)
{
    const QString target = scratch("target.png");
    const QString link = scratch("link.png");
    const zre::Image image = zrtest::noise(6, 6, 1, 1);
    ASSERT_TRUE(written(target, image));
    ASSERT_TRUE(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner));
    ASSERT_TRUE(QFile::link(target, link));
    ASSERT_TRUE(written(link, zrtest::noise(8, 5, 1, 2)));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(QImageReader(target).size(), QSize(8, 5));
    EXPECT_FALSE(QFileInfo(target).permissions() & QFile::ReadOther);
}

} // namespace
