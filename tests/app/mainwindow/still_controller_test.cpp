#include "app/mainwindow/still_controller.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include "app/session/open_document.h"
#include "engine/demo/demo_scene.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/support/testkit.h"

static QString scratch(const std::string& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

struct Stills : testing::Test
{
    FakeHost host;
    QStringList made;
    StillController stills{host,
                           [this](zre::Image& out) {
                               return host.pipeline().renderView(host.document.outputMode, {}, out,
                                                                 nullptr);
                           },
                           [this](const QString& path) { made << path; }};

    void SetUp() override
    {
        zre::DemoSceneOptions options;
        options.width = 90;
        options.height = 60;
        zre::DemoScene scene = zre::makeDemoScene(options);
        host.document.installSource(scratch("m 31.x.fits"), std::move(scene.picture),
                                    std::move(scene.wcs), {});
    }
};

TEST_F(Stills, EachViewComesBackFromItsFileWithTheSolutionThatFitsIt)
{
    for (const int view : {0, 1, 2, 3}) {
        const QString path = scratch("view" + std::to_string(view) + ".xisf");
        host.document.outputMode = view;
        host.script.answers = {path};
        stills.saveImage();
        zre::Image rendered;
        ASSERT_TRUE(host.pipeline().renderView(view, {}, rendered, nullptr));
        Session back;
        QString error;
        ASSERT_TRUE(openSource(path, StretchMode::None, back, nullptr, &error))
            << qPrintable(error);
        EXPECT_TRUE(zrtest::imagesNear(back.source, rendered, 1e-7)) << "view " << view;
        EXPECT_EQ(back.wcs.valid, view == 0 || view == 2) << "view " << view;
    }
    EXPECT_EQ(host.statuses.back(), "Exported stereo pair: view3.xisf (180 x 60)");
    EXPECT_TRUE(host.script.warned.isEmpty());
    EXPECT_EQ(made.size(), 4);
}

TEST_F(Stills, TheSuggestedFileStandsBesideTheSourceAndNamesTheView)
{
    stills.saveImage();
    EXPECT_TRUE(host.script.asked.back().startsWith("Export anaglyph|" +
                                                    scratch("m 31.x_anaglyph.xisf") + "|"))
        << qPrintable(host.script.asked.back());
    host.document.starsPath = scratch("M42-stars.png");
    host.document.starlessPath = scratch("M42-starless.png");
    host.document.starsLayer = host.document.starless = host.document.source;
    EXPECT_EQ(suggestedStillName(host.document), "M42_anaglyph.xisf");
    EXPECT_TRUE(host.statuses.isEmpty()); // cancelled: nothing was rendered
}

TEST_F(Stills, AFileThatCannotBeWrittenIsSaidAndTheOldOneStays)
{
    const QString path = scratch("absent-folder/picture.tif");
    host.script.answers = {path, scratch("picture.unknown")};
    stills.saveImage();
    stills.saveImage();
    ASSERT_EQ(host.script.warned.size(), 2);
    EXPECT_TRUE(host.script.warned[0].startsWith("Export|Could not write:\n" + path));
    EXPECT_FALSE(QFileInfo::exists(scratch("picture.unknown")));
    EXPECT_TRUE(made.isEmpty());
}

TEST_F(Stills, WithoutAnImageNothingIsAsked)
{
    host.document = Session();
    stills.saveImage();
    EXPECT_TRUE(host.script.asked.isEmpty());
    EXPECT_EQ(host.statuses.back(), "Nothing to save yet - open an image first.");
}
