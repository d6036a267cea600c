#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "app/mainwindow/color_profile_controller.h"
#include "app/mainwindow/depth_map_controller.h"
#include "app/persist/color_profile.h"
#include "app/persist/recent_files.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

using appcfg::RecentCategory;

namespace {

QString scratch(const std::string& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

QString mapFile(const std::string& name)
{
    EXPECT_TRUE(zre_qt::toQImage(zrtest::noise(9, 6, 0, 5)).save(scratch(name)));
    return scratch(name);
}

struct Beside : testing::Test
{
    PrivateSettings own;
    FakeHost host;
    DepthMapController maps{host};
    ColorProfileController profiles{host};

    void openAnImage() { host.document.installSource("a.png", zrtest::noise(9, 6, 1, 1), {}, {}); }
};

} // namespace

TEST_F(Beside, ALoadedMapCountsAndEntersItsOwnList)
{
    openAnImage();
    const zre::Image before = *host.pipeline().cachedDepth();
    host.script.answers = {mapFile("map.png")};
    maps.loadDepthMap();
    EXPECT_TRUE(host.document.params.depthMapEnabled);
    EXPECT_EQ(host.document.params.depthMapBlend, 1.0f);
    EXPECT_EQ(depthMapName(host.document), "map.png");
    EXPECT_FALSE(zrtest::imagesNear(*host.pipeline().cachedDepth(), before, 0.01));
    EXPECT_EQ(recent::entries(RecentCategory::DepthMaps), QStringList(scratch("map.png")));
    EXPECT_TRUE(recent::entries(RecentCategory::Images).isEmpty());

    host.document.params.depthMapBlend = 0.25f; // the user's choice outlives another map
    ASSERT_TRUE(maps.loadDepthMapFile(mapFile("second.png")));
    EXPECT_EQ(host.document.params.depthMapBlend, 0.25f);

    maps.viewDepthMap();
    EXPECT_EQ(host.script.lastPicture, zre_qt::toQImage(host.document.externalDepth));
    maps.clearDepthMap();
    EXPECT_FALSE(host.document.externalDepth.usable());
    EXPECT_EQ(host.steps.size(), 3);
}

TEST_F(Beside, AMapThatCannotBeReadLeavesTheOldOne)
{
    openAnImage();
    ASSERT_TRUE(maps.loadDepthMapFile(mapFile("kept.png")));
    const int generation = host.document.generation;
    zrtest::writeBytes(zrtest::scratchFolder() / "broken.xisf", {'X', 'I', 'S', 'F'});
    EXPECT_FALSE(maps.loadDepthMapFile(scratch("broken.xisf")));
    maps.loadDepthMap(); // cancelled
    EXPECT_EQ(host.script.warned.size(), 1);
    EXPECT_EQ(host.document.generation, generation);
    EXPECT_EQ(depthMapName(host.document), "kept.png");
    EXPECT_EQ(recent::entries(RecentCategory::DepthMaps).size(), 1);
}

TEST_F(Beside, WithoutAnImageNothingIsAskedOrChanged)
{
    const QString map = mapFile("early.png");
    maps.loadDepthMap();
    maps.viewDepthMap();
    maps.clearDepthMap();
    profiles.loadColorProfile();
    profiles.saveColorProfile();
    EXPECT_FALSE(maps.loadDepthMapFile(map));
    EXPECT_FALSE(profiles.loadColorProfileFile(scratch("absent.zrcol")));
    EXPECT_TRUE(host.script.asked.isEmpty() && host.script.warned.isEmpty());
    EXPECT_TRUE(host.steps.isEmpty() && host.script.pictureTitles.isEmpty());
    EXPECT_EQ(host.document.generation, 0);
}

TEST_F(Beside, AProfileSavedFromOneImageServesAnother)
{
    openAnImage();
    host.document.params.colorDepthWeight = 0.7f;
    host.document.params.colorDepthEntries = "1,255,0,0,0.5,0.25";
    const zre::ZRParams saved = host.document.params;
    host.script.answers = {scratch("rows.zrcol")};
    profiles.saveColorProfile();
    EXPECT_TRUE(host.script.asked.back().contains("a.zrcol"));

    host.document.params = {};
    host.document.params.parallaxAmount = 33.0f;
    ASSERT_TRUE(profiles.loadColorProfileFile(scratch("rows.zrcol")));
    EXPECT_EQ(host.document.params.colorDepthWeight, saved.colorDepthWeight);
    EXPECT_EQ(host.document.params.colorDepthEntries, saved.colorDepthEntries);
    EXPECT_TRUE(host.document.params.colorDepthEnabled);
    EXPECT_EQ(host.document.params.parallaxAmount, 33.0f);
    EXPECT_EQ(recent::entries(RecentCategory::ColorDepth), QStringList(scratch("rows.zrcol")));
}

TEST_F(Beside, ValuesBeyondTheirRangeAreBoundWhenAProfileIsLoaded)
{
    openAnImage();
    zre::ZRParams wild;
    wild.colorDepthWeight = 900.0f;
    wild.colorDepthGaussian = -5.0f;
    wild.colorDepthSmoothness = std::numeric_limits<float>::quiet_NaN();
    ASSERT_TRUE(zrcol::save(scratch("wild.zrcol"), wild, nullptr));
    ASSERT_TRUE(profiles.loadColorProfileFile(scratch("wild.zrcol")));
    EXPECT_EQ(host.document.params.colorDepthWeight, 1.0f);
    EXPECT_EQ(host.document.params.colorDepthGaussian, 0.0f);
    EXPECT_TRUE(std::isfinite(host.document.params.colorDepthSmoothness));

    zrtest::writeBytes(zrtest::scratchFolder() / "bad.zrcol", {'x'});
    const zre::ZRParams before = host.document.params;
    EXPECT_FALSE(profiles.loadColorProfileFile(scratch("bad.zrcol")));
    EXPECT_EQ(host.script.warned.size(), 1);
    EXPECT_EQ(host.document.params.colorDepthWeight, before.colorDepthWeight);
}
