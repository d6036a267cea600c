#include <cmath>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "app/mainwindow/main_window.h"
#include "app/mainwindow/preview_view.h"
#include "app/persist/appcfg.h"
#include "app/stars/star_sprite_view.h"
#include "app/stars/star_table_window.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/scripted_prompter.h"
#include "tests/support/testkit.h"

namespace {

/// Stars of growing brightness on a dark ground, twenty pixels apart.
QString starFile()
{
    constexpr int kSide = 100;
    zre::Image image(kSide, kSide, 0);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const double dx = x % 20 - 10.0;
            const double dy = y % 20 - 10.0;
            const double bright = 0.4 + 0.02 * (x / 20 + y / 20 * 5);
            image.data[static_cast<std::size_t>(y * kSide + x)] =
                static_cast<float>(0.05 + bright * std::exp(-(dx * dx + dy * dy) / 4.0));
        }
    const auto path =
        QString::fromStdString((zrtest::scratchFolder() / "table_stars.png").string());
    EXPECT_TRUE(zre_qt::toQImage(image).save(path));
    return path;
}

struct TableInWindow : testing::Test
{
    Script script;
    MainWindow window{std::make_unique<ScriptedPrompter>(script)};
    PreviewView& preview = *window.findChild<PreviewView*>();
    StarTableWindow* table = nullptr;

    void SetUp() override
    {
        window.show();
        ASSERT_TRUE(window.loadImageFromPath(starFile()));
        action("view.source").trigger(); // a view that needs no stars for itself
        action("showStarTable").trigger();
        table = window.findChild<StarTableWindow*>();
        ASSERT_TRUE(table && table->isVisible());
        ASSERT_EQ(table->stars().rowCount(), 25);
    }
    QAction& action(const QString& name) { return *window.findChild<QAction*>(name); }
    bool erased(int row) { return table->stars().row(row).erased; }
    QString undoText() { return action("undo").text(); }

    void eraseSelected()
    {
        auto& sprite = *table->findChild<StarSpriteView*>();
        const startable::Row& star = table->stars().row(table->selectedStar());
        for (int i = 0; i < 12; ++i)
            QTest::keyClick(&sprite, Qt::Key_BracketRight);
        QTest::mouseClick(&sprite, Qt::LeftButton, {}, sprite.toWidget({star.x, star.y}).toPoint());
    }
    void settle() // undo and redo render once the controls rest
    {
        window.renderNow();
    }
};

} // namespace

TEST_F(TableInWindow, AnErasureIsAStepOfTheHistoryAndKeepsEveryRow)
{
    table->selectStar(12);
    EXPECT_FALSE(erased(12));
    eraseSelected();
    EXPECT_TRUE(undoText().contains("erase companion"));
    EXPECT_EQ(table->stars().rowCount(), 25);
    EXPECT_TRUE(erased(12));
    EXPECT_FALSE(erased(11));
    EXPECT_EQ(table->selectedStar(), 12);

    action("undo").trigger();
    settle();
    EXPECT_FALSE(erased(12));
    EXPECT_EQ(table->selectedStar(), 12);
    action("redo").trigger();
    settle();
    EXPECT_TRUE(erased(12));
    EXPECT_EQ(table->stars().rowCount(), 25);

    QTest::keyClick(table->findChild<StarSpriteView*>(), Qt::Key_Delete);
    EXPECT_TRUE(undoText().contains("delete erasure"));
    EXPECT_FALSE(erased(12));
    eraseSelected();
    EXPECT_TRUE(erased(12));
    table->findChild<QPushButton*>("clearAllErasures")->click();
    EXPECT_TRUE(undoText().contains("clear erasures"));
    EXPECT_FALSE(erased(12));
    EXPECT_TRUE(table->actions().contains(&action("undo"))) << "its keys work in the table too";
}

TEST_F(TableInWindow, AClickIntoThePreviewSelectsTheNearestStarWithinReach)
{
    const startable::Row& star = table->stars().row(7);
    emit preview.clickedInPicture({star.x + 0.5 + 1.0, star.y + 0.5});
    EXPECT_EQ(table->selectedStar(), 7);
    action("zoomToPixels").trigger();
    emit preview.clickedInPicture({star.x + 10.0, star.y + 10.0}); // between the stars
    EXPECT_EQ(table->selectedStar(), 7);
    table->close();
    emit preview.clickedInPicture({table->stars().row(3).x + 0.5, table->stars().row(3).y + 0.5});
    EXPECT_EQ(table->selectedStar(), 7) << "a closed table takes no click";
}

TEST_F(TableInWindow, TheSelectedStarIsRingedAndTheSpotlightDarkensTheRest)
{
    action("view.source").trigger();
    const QImage plain = preview.grab().toImage();
    table->selectStar(12);
    const QImage ringed = preview.grab().toImage();
    EXPECT_NE(ringed, plain);
    table->findChild<QCheckBox*>("ringSpotlight")->click();
    EXPECT_TRUE(appcfg::starRingSpotlight());
    EXPECT_NE(preview.grab().toImage(), ringed);
    table->findChild<QCheckBox*>("ringSpotlight")->click();
    table->close();
    EXPECT_EQ(preview.grab().toImage(), plain);
}

TEST_F(TableInWindow, ExportsEveryStarAndTellsWhatFailed)
{
    const auto path = QString::fromStdString((zrtest::scratchFolder() / "stars.csv").string());
    auto& button = *table->findChild<QPushButton*>("exportStars");
    button.click(); // cancelled
    EXPECT_TRUE(script.warned.isEmpty());
    EXPECT_TRUE(script.asked.last().contains("table_stars-stars.csv"));
    script.answers = {path, "/nowhere/at/all/stars.csv"};
    button.click();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count('\n'), 26);
    button.click();
    EXPECT_EQ(script.warned.size(), 1);
}

TEST_F(TableInWindow, AnEmptyTableSaysWhy)
{
    const auto emptyText = [&] {
        QStringList texts;
        for (const QLabel* label : table->findChildren<QLabel*>())
            if (label->isVisible())
                texts << label->text();
        return texts.join('|');
    };
    window.newDocument();
    EXPECT_EQ(table->stars().rowCount(), 0);
    EXPECT_TRUE(emptyText().contains("Open an image to see its stars."));
    EXPECT_FALSE(action("showStarTable").isEnabled());
}
