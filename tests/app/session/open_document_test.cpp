#include "app/session/open_document.h"

#include "app/export/still_file.h"
#include "engine/image/midtones.h"
#include "engine/stars/star_sprites.h"
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

TEST(OpenPair, HoldsBothLayersAndTheirSum)
{
    const zre::Image starless = zrtest::noise(12, 9, 1, 4);
    const zre::Image stars = zrtest::noise(12, 9, 0, 5);
    const QString starlessPath = written("starless.tif", starless);
    const QString starsPath = written("stars.tif", stars);
    Session session;
    session.installSource("before.png", zrtest::noise(6, 5, 1, 3), {}, {});
    const int generation = session.imageGeneration;
    QString error;
    QImage preview;
    ASSERT_TRUE(openPair(starsPath, starlessPath, StretchMode::Auto, session, &preview, &error));
    EXPECT_TRUE(session.hasPair());
    EXPECT_GT(session.imageGeneration, generation);
    EXPECT_EQ(session.starsPath, starsPath);
    EXPECT_EQ(session.starlessPath, starlessPath);
    EXPECT_EQ(preview.size(), QSize(12, 9));
    for (int c = 0; c < 3; ++c)
        for (std::size_t i = 0; i < starless.pixelCount(); ++i)
            ASSERT_NEAR(session.source.plane(c)[i],
                        std::min(1.0f, starless.plane(c)[i] + stars.data[i]), 2.0 / 65535);
    session.installSource("after.png", zrtest::noise(6, 5, 1, 3), {}, {});
    EXPECT_FALSE(session.hasPair());
    EXPECT_TRUE(session.starsPath.isEmpty() && session.starlessPath.isEmpty());
}

/// Takes the mark away by which a file of ours is not taken for linear.
void makeLinear(const QString& path)
{
    auto bytes = zrtest::readBytes(path.toStdString());
    const std::string mark = "ZRSHOWN";
    const auto found = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
    ASSERT_NE(found, bytes.end());
    *found = 'Q';
    zrtest::writeBytes(path.toStdString(), bytes);
}

/// A linear pair is seen as the whole picture is: the stretch of the starless half, over the sum.
TEST(OpenPair, LinearHalvesAreStretchedAsOnePicture)
{
    zre::Image starless = zrtest::noise(40, 30, 1, 4);
    for (float& v : starless.data)
        v = 0.01f + 0.01f * v;
    zre::Image stars(40, 30, 1);
    stars.data[615] = 0.4f;
    Session session;
    zre::Wcs solution;
    ASSERT_TRUE(zre::makeSyntheticWcs(10.0, 20.0, 2.0, 0.0, 40, 30, solution));
    StillOptions solved;
    solved.wcs = &solution;
    const QString starsPath = scratch("linear_stars.fits");
    ASSERT_TRUE(writeStill(starsPath, stars, solved, nullptr));
    const QString starlessPath = written("linear_starless.fits", starless);
    makeLinear(starlessPath);
    makeLinear(starsPath);
    Session alone;
    ASSERT_TRUE(openSource(starlessPath, StretchMode::Auto, alone, nullptr, nullptr));
    ASSERT_FALSE(alone.sourceFile.stretch.isIdentity());
    ASSERT_TRUE(openPair(starsPath, starlessPath, StretchMode::Auto, session, nullptr, nullptr));
    EXPECT_TRUE(zrtest::imagesNear(session.starless, alone.source, 0));
    EXPECT_TRUE(session.wcs.valid); // the starless file has none
    zre::Image whole = zre::compositeStarlessStars(starless, stars);
    zre::applyStretch(whole, alone.sourceFile.stretch);
    EXPECT_TRUE(zrtest::imagesNear(session.source, whole, 1e-6));
    EXPECT_EQ(session.starsLayer.data[0], 0.0f);
    ASSERT_TRUE(openPair(starsPath, starlessPath, StretchMode::None, session, nullptr, nullptr));
    EXPECT_TRUE(zrtest::imagesNear(session.starsLayer, stars, 0));
}

TEST(OpenPair, SaysWhichHalfFailedAndChangesNothing)
{
    const QString good = written("good.tif", zrtest::noise(12, 9, 1, 4));
    const QString other = written("other.tif", zrtest::noise(13, 9, 1, 4));
    const QString missing = scratch("missing.tif");
    const std::tuple<QString, QString, const char*> cases[] = {
        {missing, good, "Stars only image:\nCould not load image:\n"},
        {good, missing, "Starless image:\nCould not load image:\n"},
        {good, other, "the stars only image is 12 x 9 pixels, the starless image 13 x 9"}};
    for (const auto& [stars, starless, message] : cases) {
        Session session;
        session.installSource("kept.png", zrtest::noise(6, 5, 1, 3), {}, {});
        const int generation = session.generation;
        QString error;
        EXPECT_FALSE(openPair(stars, starless, StretchMode::Auto, session, nullptr, &error));
        EXPECT_TRUE(error.contains(message)) << error.toStdString();
        EXPECT_EQ(session.generation, generation);
        EXPECT_EQ(session.sourcePath, "kept.png");
    }
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
