#include "app/mainwindow/flyby_controller.h"

#include <QAction>
#include <QFile>
#include <QMenu>

#include <gtest/gtest.h>

#include "app/mainwindow/document_controller.h"
#include "app/persist/recent_files.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

namespace {

QString scratch(const char* name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

struct Flybys : testing::Test
{
    const PrivateSettings own;
    FakeHost host;
    int moved = 0;
    int replaced = 0;
    QStringList stored;
    std::optional<FlybyController::Rescale> suggested;
    std::optional<FlybyController::Rescale> answer;
    FlybyController flybys{host,
                           {[this](const FlybyController::Rescale& known) {
                                suggested = known;
                                return answer;
                            },
                            [this] { ++moved; }, [this] { ++replaced; },
                            [this](const QString& text) { stored << text; }}};

    void SetUp() override
    {
        appcfg::setFlybyContinuousLoop(false); // it adds frames to a path that stands still
        host.document.installSource("a", zrtest::noise(60, 40, 1, 9), {}, {});
    }
    QString& script() { return host.document.flybyScript; }
};

TEST_F(Flybys, AScriptIsSavedAndComesBack)
{
    flybys.saveScript();
    EXPECT_TRUE(host.statuses.back().startsWith("There is no flyby script to save yet."));
    flybys.applyScript("hold 7 # \u00e9\n");
    EXPECT_EQ(host.statuses.back(), "Compiled: 7 frames.");
    EXPECT_EQ(host.document.flybyScriptSize, QSize(60, 40));
    host.script.answers = {scratch("path")};
    flybys.saveScript();
    EXPECT_EQ(host.statuses.back(), "Saved to " + scratch("path.zrsc"));
    const QString saved = std::exchange(script(), {});
    host.script.answers = {scratch("path.zrsc")};
    flybys.loadScript();
    EXPECT_EQ(script(), saved);
    EXPECT_TRUE(host.script.asked.back().startsWith("Load Flyby Script|"));
    EXPECT_EQ(recent::entries(appcfg::RecentCategory::Scripts), QStringList(scratch("path.zrsc")));
    EXPECT_EQ(appcfg::lastDialogPath("lastScriptPath"), scratch("path.zrsc"));
    EXPECT_EQ(moved, 2);
    EXPECT_EQ(replaced, 2);
    EXPECT_EQ(stored, QStringList({saved, saved})) << "on saving and on loading";
}

TEST_F(Flybys, WhatCannotBeReadOrCompiledIsTold)
{
    script() = "hold 3";
    EXPECT_FALSE(flybys.loadScriptFile(scratch("none.zrsc")));
    EXPECT_EQ(host.script.warned.size(), 1);
    QFile huge(scratch("huge.zrsc"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize((16 << 20) + 1));
    EXPECT_FALSE(flybys.loadScriptFile(huge.fileName()));
    EXPECT_EQ(script(), "hold 3");
    flybys.applyScript("hold 2\nfly away\nhold -1\n");
    EXPECT_EQ(host.statuses.back(), "Line 2: Unknown command 'fly'.  (using built-in) (+1 more)");
    host.document.clear();
    EXPECT_FALSE(flybys.loadScriptFile(scratch("path.zrsc"))) << "there is no picture to fly over";
}

TEST_F(Flybys, CoordinatesFollowTheSizesThatTheUserGives)
{
    flybys.rescaleFlybyScript();
    EXPECT_EQ(host.statuses.back(),
              "There is no flyby path to rescale yet. Author a path first (Flyby editor).");
    EXPECT_FALSE(suggested);
    flybys.applyScript("moveto 10 20 5");
    const std::optional<FlybyController::Rescale> useless[] = {
        std::nullopt, {{{60, 40}, {60, 40}}}, {{{0, 40}, {60, 40}}}, {{{60, 40}, {60, -1}}}};
    for (const auto& each : useless) {
        answer = each;
        flybys.rescaleFlybyScript();
        EXPECT_EQ(script(), "moveto 10 20 5");
    }
    EXPECT_EQ(suggested->from, QSize(60, 40));
    answer = {{{60, 40}, {120, 60}}};
    flybys.rescaleFlybyScript();
    EXPECT_EQ(script(), "moveto 20 30 5");
    EXPECT_EQ(host.document.flybyScriptSize, QSize(120, 60));
    EXPECT_EQ(host.statuses.back(), "Flyby coordinates rescaled 60x40 -> 120x60.");
    script() = "path_start mode=3d x=1";
    flybys.rescaleFlybyScript();
    EXPECT_EQ(script(), "path_start mode=3d x=1");
    EXPECT_TRUE(host.statuses.back().startsWith("A 3D flight")) << "it lies in space";
}

TEST_F(Flybys, AnExampleFitsThePicture)
{
    QMenu menu;
    flybys.buildExamplesMenu(menu);
    ASSERT_EQ(menu.actions().size(), 8);
    for (QAction* action : menu.actions()) {
        action->trigger();
        EXPECT_TRUE(host.statuses.back().startsWith("Compiled: "))
            << host.statuses.back().toStdString();
    }
}

TEST_F(Flybys, APathIsAskedAboutWhenAnImageOfAnotherSizeComes)
{
    DocumentController documents(host);
    const QString path = scratch("wide.png");
    ASSERT_TRUE(zre_qt::toQImage(zrtest::noise(120, 20, 1, 3)).save(path));
    const QString question =
        "Zerrith - Flyby|The image is now 120 x 20 px, but the flyby path was built for a 60 x 40 "
        "px image.\n\nRescale the path (and script) to the new image size?|Yes|No";
    struct Row
    {
        std::deque<int> choices; ///< none: cancelled
        bool opens;
        const char* script;
    };
    for (const Row& row : {Row{{}, false, "moveto 10 20 5"}, Row{{1}, true, "moveto 10 20 5"},
                           Row{{0}, true, "moveto 20 10 5"}}) {
        host.document.installSource("a", zrtest::noise(60, 40, 1, 9), {}, {});
        flybys.applyScript("moveto 10 20 5");
        host.script.questions.clear();
        host.script.choices = row.choices;
        EXPECT_EQ(documents.loadImageFromPath(path), row.opens);
        EXPECT_EQ(host.script.questions, QStringList(question));
        EXPECT_EQ(script(), row.script);
    }
    host.script.questions.clear();
    host.script.choices = {DocumentController::kStartFresh};
    EXPECT_TRUE(documents.loadImageFromPath(path));
    EXPECT_FALSE(host.script.questions.contains(question)) << "the path fits";
}

} // namespace
