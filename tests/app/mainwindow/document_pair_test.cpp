#include <gtest/gtest.h>

#include "app/mainwindow/document_controller.h"
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

QString picture(const std::string& name, int width, int height, unsigned seed)
{
    EXPECT_TRUE(zre_qt::toQImage(zrtest::noise(width, height, 1, seed)).save(scratch(name)));
    return scratch(name);
}

struct Pairs : testing::Test
{
    PrivateSettings own;
    FakeHost host;
    DocumentController documents{host};
    QString starless = picture("rho_starless.png", 48, 32, 1);
    QString stars = picture("rho_stars.png", 48, 32, 2);

    void holdDepthMap()
    {
        ASSERT_TRUE(documents.loadImageFromPath(picture("before.png", 48, 32, 3)));
        host.document.installExternalDepth("map.png", zrtest::noise(48, 32, 0, 4));
    }
    /// What a failed or cancelled opening must leave.
    void expectUntouched(const Session& before)
    {
        EXPECT_EQ(host.document.generation, before.generation);
        EXPECT_EQ(host.document.sourcePath, before.sourcePath);
        EXPECT_EQ(host.document.hasPair(), before.hasPair());
        EXPECT_TRUE(zrtest::imagesNear(host.document.source, before.source, 0));
        EXPECT_EQ(host.document.externalDepth.usable(), before.externalDepth.usable());
        EXPECT_TRUE(recent::entries(RecentCategory::Pairs).isEmpty());
    }
};

} // namespace

TEST_F(Pairs, BothLayersOpenUnderTheirStagesAndTheSumIsTheSource)
{
    host.script.answers = {starless, stars};
    documents.openPair();
    ASSERT_TRUE(host.document.hasPair());
    EXPECT_TRUE(host.script.asked[0].startsWith("Open Starless Image (1 of 2)||"));
    EXPECT_TRUE(host.script.asked[1].contains("(2 of 2)|" + stars + "|")); // suggested
    EXPECT_EQ(host.statuses,
              QStringList({"Loading starless image...", "Loading starless image...",
                           "Loading stars image...", "Compositing...", "Preparing image...",
                           "Preparing image...", "Preparing image...", "Rendering...",
                           "Loaded stars + starless: rho_stars.png + rho_starless.png"}));
    const Session& open = host.document;
    for (const std::size_t i : {std::size_t{0}, open.source.data.size() - 1})
        EXPECT_NEAR(open.source.data[i],
                    std::min(1.0f, open.starless.data[i] + open.starsLayer.data[i]), 1e-6);
    EXPECT_EQ(windowTitleFor(open).section(" - ", 0, 0), "rho_stars.png + rho_starless.png");
    EXPECT_EQ(recent::entries(RecentCategory::Pairs), QStringList(stars + " | " + starless));
    EXPECT_TRUE(recent::entries(RecentCategory::Images).isEmpty());

    ASSERT_TRUE(documents.loadImageFromPath(picture("single.png", 48, 32, 5)));
    EXPECT_FALSE(host.document.hasPair());
}

TEST_F(Pairs, AFileThatFailsIsNamedByItsLayerAndChangesNothing)
{
    holdDepthMap();
    appcfg::setPairReplaceNoticeHidden(true);
    const Session before = host.document;
    const QString small = picture("small.png", 24, 16, 6);
    const std::pair<QStringList, const char*> cases[] = {
        {{stars, scratch("absent.png")}, "Load Stars + Starless|Starless image:\n"},
        {{scratch("absent.png"), starless}, "Load Stars + Starless|Stars only image:\n"},
        {{small, starless}, "Load Stars + Starless|The two images must be of the same size"},
    };
    for (const auto& [paths, message] : cases) {
        EXPECT_FALSE(documents.loadStarlessStarsPair(paths[0], paths[1]));
        EXPECT_TRUE(host.script.warned.back().startsWith(message)) << message;
        expectUntouched(before);
    }
    documents.openPair(); // cancelled at once
    host.script.answers = {starless};
    documents.openPair(); // cancelled at the second file
    expectUntouched(before);
    EXPECT_TRUE(host.script.questions.isEmpty());
}

TEST_F(Pairs, EveryQuestionCanCancelAndTheNoticeCanBeSwitchedOff)
{
    holdDepthMap();
    const Session before = host.document;
    EXPECT_FALSE(documents.loadStarlessStarsPair(stars, starless)); // at the notice
    expectUntouched(before);
    host.script.choices = {1}; // seen for the last time; then the carrying over is cancelled
    EXPECT_FALSE(documents.loadStarlessStarsPair(stars, starless));
    expectUntouched(before);
    EXPECT_TRUE(appcfg::pairReplaceNoticeHidden());
    EXPECT_TRUE(host.script.questions.back().contains("Carry over"));

    const QString wide = picture("wide_starless.png", 64, 32, 7);
    const QString wideStars = picture("wide_stars.png", 64, 32, 8);
    EXPECT_FALSE(documents.loadStarlessStarsPair(wideStars, wide));
    expectUntouched(before);
    EXPECT_EQ(host.script.questions.back().toStdString(),
              "Load Stars + Starless|The new images are 64 x 32 px, of other proportions than the "
              "current 48 x 32 px.\n\nThis is lost:\n    - the external depth map|Open the pair");
    host.script.choices = {0};
    EXPECT_TRUE(documents.loadStarlessStarsPair(wideStars, wide));
    EXPECT_FALSE(host.document.externalDepth.usable());
    EXPECT_EQ(host.script.questions.size(), 5);
}

TEST_F(Pairs, ALayerOpenedOffersTheOtherBesideIt)
{
    documents.openWithPartner(starless); // cancelled
    EXPECT_FALSE(host.document.hasSource());
    host.script.choices = {1, 0};
    documents.openWithPartner(starless);
    EXPECT_TRUE(host.document.hasSource() && !host.document.hasPair());
    appcfg::setPairReplaceNoticeHidden(true);
    documents.openWithPartner(stars);
    EXPECT_EQ(host.document.starsPath, stars);
    EXPECT_EQ(host.script.questions.size(), 3);
    documents.openWithPartner(picture("whole.png", 48, 32, 9));
    EXPECT_EQ(host.script.questions.size(), 3);
    EXPECT_FALSE(host.document.hasPair());
}
