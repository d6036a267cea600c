#include "app/session/open_document.h"

#include "app/export/still_file.h"
#include "tests/support/testkit.h"

namespace {

QString scratch(const char* name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

QString written(const char* name, const zre::Image& image)
{
    QString error;
    const QString path = scratch(name);
    EXPECT_TRUE(writeStill(path, image, {}, &error)) << error.toStdString();
    return path;
}

TEST(DepthPlane, KeepsGreysBitForBitWhateverTheFormatMadeOfThem)
{
    const zre::Image grey = zrtest::noise(13, 7, 0, 1);
    zre::Image colour(13, 7, 1);
    for (int c = 0; c < 3; ++c)
        std::copy(grey.data.begin(), grey.data.end(), colour.plane(c));
    EXPECT_TRUE(zrtest::imagesNear(depthPlane(grey), grey, 0));
    EXPECT_TRUE(zrtest::imagesNear(depthPlane(colour), grey, 0));
}

TEST(DepthPlane, OfAColouredMapIsItsLumaAndContinuousAtTheGreys)
{
    zre::Image colour(3, 1, 1);
    const float pixels[3][3] = {{1, 0, 0}, {0, 0, 1}, {0.5f, 0.5f, 0.500001f}};
    for (int x = 0; x < 3; ++x)
        for (int c = 0; c < 3; ++c)
            colour.plane(c)[x] = pixels[x][c];
    const zre::Image plane = depthPlane(colour);
    ASSERT_EQ(plane.data.size(), 3u);
    EXPECT_NEAR(plane.data[0], 0.299, 1e-6);
    EXPECT_NEAR(plane.data[1], 0.114, 1e-6);
    EXPECT_NEAR(plane.data[2], 0.5, 1e-6);
}

TEST(OpenDepthMap, TakesLinearFormatsWithoutStretch)
{
    zre::Image map = zrtest::ramp(40, 4);
    for (float& v : map.data)
        v *= 0.1f; // dark, as linear data are
    Session session;
    QString error;
    ASSERT_TRUE(openDepthMap(written("map.fits", map), session, &error)) << error.toStdString();
    EXPECT_TRUE(zrtest::imagesNear(session.externalDepth, map, 0));
}

TEST(OpenSource, ThatFailsLeavesTheDocumentAsItWas)
{
    Session session;
    session.installSource("kept.png", zrtest::noise(6, 5, 1, 3), {}, {});
    const zre::Image before = session.source;
    const int generation = session.generation;
    zrtest::writeBytes(scratch("broken.png").toStdString(), {'n', 'o', 'n', 'e'});
    for (const char* name : {"broken.png", "missing.xisf"}) {
        QString error;
        QImage preview;
        EXPECT_FALSE(openSource(scratch(name), StretchMode::Auto, session, &preview, &error));
        EXPECT_FALSE(openDepthMap(scratch(name), session, &error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_TRUE(preview.isNull());
    }
    EXPECT_EQ(session.sourcePath, "kept.png");
    EXPECT_EQ(session.generation, generation);
    EXPECT_FALSE(session.externalDepth.usable());
    EXPECT_TRUE(zrtest::imagesNear(session.source, before, 0));
}

} // namespace
