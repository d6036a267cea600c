#include "app/mainwindow/document_controller.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "app/export/still_file.h"
#include "app/persist/recent_files.h"
#include "engine/demo/demo_scene.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

static QString scratch(const std::string& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

/// A picture with a solution, as a file.
static QString sceneFile(const std::string& name, int width, int height)
{
    zre::DemoSceneOptions options;
    options.width = width;
    options.height = height;
    const zre::DemoScene scene = zre::makeDemoScene(options);
    StillOptions still;
    still.wcs = &scene.wcs;
    QString error;
    EXPECT_TRUE(writeStill(scratch(name), scene.picture, still, &error)) << qPrintable(error);
    return scratch(name);
}

struct Documents : testing::Test
{
    PrivateSettings own;
    FakeHost host;
    DocumentController documents{host};
};

TEST_F(Documents, OpeningTellsSizeAndScaleOfTheSolution)
{
    host.script.answers = {sceneFile("first.xisf", 96, 64)};
    documents.openImage();
    ASSERT_TRUE(host.document.hasSource());
    EXPECT_EQ(host.replaced, 1);
    EXPECT_EQ(host.statuses.back().toStdString(),
              QString("first.xisf  -  96 x 64  -  WCS: %1 arcsec/px")
                  .arg(host.document.wcs.resolutionArcsec, 0, 'f', 3)
                  .toStdString());
    EXPECT_TRUE(host.script.warned.isEmpty());
}

TEST_F(Documents, FailureAndCancelLeaveTheSessionAsItWas)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("kept.xisf", 48, 32)));
    const Session before = host.document;
    host.statuses.clear();

    zrtest::writeBytes(zrtest::scratchFolder() / "broken.xisf", {'X', 'I', 'S', 'F'});
    EXPECT_FALSE(documents.loadImageFromPath(scratch("broken.xisf")));
    EXPECT_FALSE(documents.loadImageFromPath(scratch("absent.png")));
    documents.openImage(); // no answer: cancelled

    ASSERT_EQ(host.script.warned.size(), 2);
    EXPECT_TRUE(host.script.warned[0].startsWith("Open Image|Could not load XISF:\n"));
    EXPECT_TRUE(host.script.warned[1].startsWith("Open Image|Could not load image:\n"));
    EXPECT_EQ(host.document.generation, before.generation);
    EXPECT_EQ(host.document.sourcePath, before.sourcePath);
    EXPECT_EQ(host.document.wcs.solution, before.wcs.solution);
    EXPECT_TRUE(zrtest::imagesNear(host.document.source, before.source, 0));
    EXPECT_EQ(host.replaced, 1);
}

TEST_F(Documents, NothingOpensWhileWorkIsUnderWay)
{
    const QString path = sceneFile("busy.xisf", 32, 32);
    host.busyRun([&] { EXPECT_FALSE(documents.loadImageFromPath(path)); });
    EXPECT_FALSE(host.document.hasSource());
}

TEST_F(Documents, TheDialogComesBackToTheFolderLastOpenedFrom)
{
    documents.openImage();
    EXPECT_TRUE(host.script.asked.back().startsWith("Open Image||"));
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("folder.xisf", 32, 32)));
    documents.openImage();
    EXPECT_TRUE(host.script.asked.back().startsWith("Open Image|" + scratch("").chopped(1) + "|"));
}

TEST_F(Documents, TheCommandLineOpensImagesAndIgnoresTheRestInSilence)
{
    const QString image = sceneFile("argument.xisf", 32, 32);
    zrtest::writeBytes(zrtest::scratchFolder() / "session.zrproj", {0});
    for (const QString& path : {scratch("absent.xisf"), scratch("session.zrproj"), scratch("")})
        documents.openProjectFromCommandLine(path);
    EXPECT_FALSE(host.document.hasSource());
    EXPECT_TRUE(host.statuses.isEmpty() && host.script.warned.isEmpty());
    documents.openProjectFromCommandLine(image);
    EXPECT_TRUE(host.document.hasSource());
}

/// A dark 16-bit FITS frame, as a camera writes it.
static std::vector<std::uint8_t> cameraFrame(int side)
{
    std::string header;
    for (const std::string& card :
         {std::string("SIMPLE  =                    T"),
          std::string("BITPIX  =                   16"),
          std::string("NAXIS   =                    2"), "NAXIS1  = " + std::to_string(side),
          "NAXIS2  = " + std::to_string(side), std::string("BZERO   =                32768"),
          std::string("BSCALE  =                    1"), std::string("END")})
        header += card + std::string(80 - card.size(), ' ');
    header.resize(2880, ' ');
    std::vector<std::uint8_t> bytes(header.begin(), header.end());
    for (const float v : zrtest::noise(side, side, 0, 3).data) {
        const int stored = static_cast<int>(v * 600.0f) - 32768;
        bytes.push_back(static_cast<std::uint8_t>((stored >> 8) & 0xff));
        bytes.push_back(static_cast<std::uint8_t>(stored & 0xff));
    }
    bytes.resize((bytes.size() + 2879) / 2880 * 2880, 0);
    return bytes;
}

TEST_F(Documents, LinearDataSayHowTheyAreStretched)
{
    zrtest::writeBytes(zrtest::scratchFolder() / "dark.fits", cameraFrame(64));
    ASSERT_TRUE(documents.loadImageFromPath(scratch("dark.fits")));
    EXPECT_TRUE(host.statuses.back().contains("linear data, shown stretched (shadows 0.00"))
        << qPrintable(host.statuses.back());
    EXPECT_GT(*std::max_element(host.document.source.data.begin(), host.document.source.data.end()),
              0.2f);
}

static void giveDepthMap(Session& session)
{
    session.installExternalDepth("map.png",
                                 zrtest::noise(session.source.width, session.source.height, 0, 4));
}

TEST_F(Documents, AnImageOfTwiceTheSizeAsksAndCarriesTheMapOver)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("small.xisf", 48, 32)));
    giveDepthMap(host.document);
    host.document.params.flybyFrameW = 20;
    const int generation = host.document.generation;
    host.script.choices = {DocumentController::kCarryOver};
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("large.xisf", 96, 64)));
    ASSERT_EQ(host.script.questions.size(), 1);
    EXPECT_EQ(host.script.questions[0].toStdString(),
              "Zerrith|The new images are 96 x 64 px, the same proportions as the current 48 x 32 "
              "px at 2x the scale.\n\nThis can be carried over:\n    - the external depth map, "
              "resampled|Carry over|Start fresh");
    EXPECT_EQ(host.document.source.width, 96);
    EXPECT_EQ(host.document.externalDepth.width, 96);
    EXPECT_EQ(host.document.externalDepth.height, 64);
    EXPECT_EQ(host.document.params.flybyFrameW, 40);
    EXPECT_GT(host.document.generation, generation);
}

TEST_F(Documents, CancellingTheCarryQuestionKeepsEverything)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("first.xisf", 48, 32)));
    giveDepthMap(host.document);
    const Session before = host.document;
    EXPECT_FALSE(documents.loadImageFromPath(sceneFile("second.xisf", 96, 64)));
    EXPECT_EQ(host.script.questions.size(), 1);
    EXPECT_EQ(host.document.generation, before.generation);
    EXPECT_EQ(host.document.sourcePath, before.sourcePath);
    EXPECT_TRUE(zrtest::imagesNear(host.document.source, before.source, 0));
    EXPECT_TRUE(zrtest::imagesNear(host.document.externalDepth, before.externalDepth, 0));
    EXPECT_EQ(host.replaced, 1);
    EXPECT_EQ(recent::entries(appcfg::RecentCategory::Images).size(), 1);
}

TEST_F(Documents, StartingFreshDropsTheMapAndOtherProportionsDoSoUnasked)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("one.xisf", 48, 32)));
    giveDepthMap(host.document);
    host.document.params.flybyFrameW = 20;
    host.script.choices = {DocumentController::kStartFresh};
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("two.xisf", 96, 64)));
    EXPECT_FALSE(host.document.externalDepth.usable());
    EXPECT_EQ(host.document.params.flybyFrameW, 20);
    EXPECT_EQ(host.script.questions.size(), 1);

    giveDepthMap(host.document);
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("three.xisf", 98, 64))); // 2 percent off
    EXPECT_FALSE(host.document.externalDepth.usable());
    EXPECT_EQ(host.script.questions.size(), 1);
}

TEST_F(Documents, NothingToCarryAsksNothing)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("bare.xisf", 48, 32)));
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("next.xisf", 96, 64)));
    EXPECT_TRUE(host.script.questions.isEmpty());
}

TEST_F(Documents, ANewDocumentIsEmptyAndNoCacheAnswersForTheOldOne)
{
    ASSERT_TRUE(documents.loadImageFromPath(sceneFile("old.xisf", 48, 32)));
    giveDepthMap(host.document);
    host.document.params.parallaxAmount = 50.0f;
    host.document.outputMode = 1;
    host.pipeline().cachedDepth();
    ASSERT_NE(host.pipeline().standingDepth(), nullptr);
    const int generation = host.document.generation;
    documents.newDocument();
    EXPECT_FALSE(host.document.hasSource() || host.document.externalDepth.usable());
    EXPECT_FALSE(host.document.wcs.valid);
    EXPECT_EQ(host.document.params.parallaxAmount, zre::ZRParams().parallaxAmount);
    EXPECT_EQ(host.document.outputMode, 2);
    EXPECT_GT(host.document.generation, generation);
    EXPECT_EQ(host.pipeline().standingDepth(), nullptr);
    EXPECT_EQ(host.statuses.back(), "New. Open an image to begin.");
}

TEST_F(Documents, ImagesEnterTheListOfRecentOnesButTheBuiltInSceneHasNoFile)
{
    const QString path = sceneFile("listed.xisf", 48, 32);
    ASSERT_TRUE(documents.loadImageFromPath(path));
    EXPECT_FALSE(documents.loadImageFromPath(scratch("absent.png")));
    EXPECT_EQ(recent::entries(appcfg::RecentCategory::Images), QStringList(path));
    EXPECT_TRUE(recent::entries(appcfg::RecentCategory::DepthMaps).isEmpty());
}
