#include "app/mainwindow/recent_controller.h"

#include <QFile>
#include <QMenu>

#include <gtest/gtest.h>

#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

using appcfg::RecentCategory;

namespace {

QString touched(const std::string& name)
{
    const auto path = zrtest::scratchFolder() / name;
    zrtest::writeBytes(path, {0});
    return QString::fromStdString(path.string());
}

struct RecentMenu : testing::Test
{
    PrivateSettings own;
    FakeHost host;
    QStringList opened;
    RecentController recents{host, opener("image "),
                             [this](const QString& stars, const QString& starless) {
                                 opened << "pair " + stars + " " + starless;
                             },
                             opener("depth "), opener("profile "), opener("script ")};
    QMenu menu;

    RecentController::Open opener(const QString& kind)
    {
        return [this, kind](const QString& path) { opened << kind + path; };
    }
    QMenu* list(const QString& title)
    {
        recents.buildRecentMenu(menu);
        for (const QAction* entry : menu.actions())
            if (entry->menu() && entry->text().remove('&') == title)
                return entry->menu();
        return nullptr;
    }
};

} // namespace

TEST_F(RecentMenu, EveryListOpensThroughItsOwnDoor)
{
    const QString image = touched("a & b.png");
    const QString map = touched("depth.png");
    recent::pushFile(RecentCategory::Images, image);
    recent::pushFile(RecentCategory::DepthMaps, map);
    EXPECT_FALSE(list("Depth Maps")->isEnabled()); // without an image
    host.document.installSource("a.png", zrtest::noise(4, 4, 1, 1), {}, {});
    ASSERT_TRUE(list("Depth Maps")->isEnabled());
    EXPECT_EQ(list("Images")->actions().value(0)->text(), "a && b.png");
    list("Images")->actions().value(0)->trigger();
    list("Depth Maps")->actions().value(0)->trigger();
    EXPECT_EQ(opened, QStringList({"image " + image, "depth " + map}));
}

TEST_F(RecentMenu, PairsOpenWithBothFilesAndAreGoneWithEitherOne)
{
    const QString stars = touched("p | q stars.png");
    const QString starless = touched("p starless.png");
    recent::pushPair({stars, starless});
    ASSERT_NE(list("Starless + Stars Pairs"), nullptr);
    QAction* entry = list("Starless + Stars Pairs")->actions().value(0);
    EXPECT_EQ(entry->text(), "p starless.png + p | q stars.png");
    entry->trigger();
    EXPECT_EQ(opened, QStringList("pair " + stars + " " + starless));

    QFile::remove(stars);
    host.script.choices = {0};
    list("Starless + Stars Pairs")->actions().value(0)->trigger();
    EXPECT_EQ(opened.size(), 1);
    EXPECT_TRUE(host.script.questions.back().contains("no longer there:\n" + stars + "|"));
    EXPECT_TRUE(recent::entries(RecentCategory::Pairs).isEmpty());
}

TEST_F(RecentMenu, AFileThatIsGoneStaysInTheListUnlessTheUserDropsIt)
{
    recent::pushFile(RecentCategory::Images, "/gone/away.png");
    recents.openRecentFile("/gone/away.png");
    EXPECT_EQ(recent::entries(RecentCategory::Images).size(), 1);
    host.script.choices = {0};
    recents.openRecentFile("/gone/away.png");
    EXPECT_TRUE(recent::entries(RecentCategory::Images).isEmpty());
    EXPECT_TRUE(opened.isEmpty());
    EXPECT_TRUE(host.script.questions[1].contains("/gone/away.png"));
}

TEST_F(RecentMenu, ClearingLeavesAMenuThatSaysSo)
{
    recent::pushFile(RecentCategory::Images, touched("clear.png"));
    recents.buildRecentMenu(menu);
    menu.actions().last()->trigger();
    recents.buildRecentMenu(menu);
    ASSERT_EQ(menu.actions().size(), 1);
    EXPECT_FALSE(menu.actions().first()->isEnabled());
}

TEST(RecentLabels, FoldersAppearOnlyWhereNamesAreTheSame)
{
    EXPECT_EQ(recentLabels({"/a/x.png", "/b/y.png", "/b/x.png"}),
              QStringList({"x.png  (/a)", "y.png", "x.png  (/b)"}));
    const QString label = recentLabels({"/a/" + QString(200, 'n') + "_stars.png"}).front();
    EXPECT_EQ(label.size(), 60);
    EXPECT_TRUE(label.endsWith("_stars.png"));
}
