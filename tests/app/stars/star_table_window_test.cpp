#include "app/stars/star_table_window.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

#include "app/stars/star_sprite_view.h"
#include "tests/app/stars/some_stars.h"

namespace {

struct StarTable : testing::Test
{
    std::vector<zre::Star> stars = scattered(300, 200, 5);
    zre::Image source{200, 200, 0};
    zre::Image base{200, 200, 0};
    startable::Erasures erasures;
    StarTableWindow window{[this] { return scene(); }, nullptr};
    QTableView& table = *window.findChild<QTableView*>();
    StarSpriteView& sprite = *window.findChild<StarSpriteView*>();
    QSignalSpy edits{&window, &StarTableWindow::erasuresEdited};

    startable::Scene scene() { return {&stars, &source, &base, {}, erasures}; }
    void SetUp() override
    {
        stars[17] = starAt(100, 90, 0.5f, 9);
        // The document takes every edit over.
        QObject::connect(&window, &StarTableWindow::erasuresEdited, &window,
                         [this](const startable::Erasures& edited) {
                             erasures = edited;
                             window.refresh();
                         });
        window.show();
        window.refresh();
    }
    void click(QPointF place)
    {
        QTest::mouseClick(&sprite, Qt::LeftButton, {}, sprite.toWidget(place).toPoint());
    }
    QString lastLabel() { return edits.isEmpty() ? QString() : edits.last()[1].toString(); }
    template <typename Widget>
    Widget& named(const char* name)
    {
        return *window.findChild<Widget*>(name);
    }
};

} // namespace

TEST_F(StarTable, SelectionAndScrollSurviveARefresh)
{
    table.sortByColumn(startable::columnNumber(startable::Column::Peak), Qt::DescendingOrder);
    window.selectStar(17);
    table.verticalScrollBar()->setValue(table.verticalScrollBar()->maximum() / 2);
    const int scrolledTo = table.verticalScrollBar()->value();
    ASSERT_GT(scrolledTo, 0);
    for (zre::Star& star : stars)
        star.depth = 0.25f;
    window.refresh();
    EXPECT_EQ(window.selectedStar(), 17);
    EXPECT_EQ(table.verticalScrollBar()->value(), scrolledTo);

    // Made anew with another number of stars, the same one is found by its place.
    stars.erase(stars.begin() + 3);
    QSignalSpy selected(&window, &StarTableWindow::starSelected);
    window.refresh();
    EXPECT_EQ(window.selectedStar(), 16);
    EXPECT_EQ(selected.last()[0].toInt(), 16);
    stars.clear();
    window.refresh();
    EXPECT_EQ(window.selectedStar(), -1);
    EXPECT_EQ(selected.last()[0].toInt(), -1);
}

TEST_F(StarTable, TellsHowManyStarsThereAreAndWhatIsListed)
{
    EXPECT_EQ(named<QLabel>("starCount").text(), "300 stars");
    stars = scattered(12345, 200, 6);
    for (int i = 0; i < 17; ++i)
        stars[static_cast<std::size_t>(i * 5)].depth = -1.0f;
    window.refresh();
    EXPECT_EQ(named<QLabel>("starCount").text(), "12,345 stars  -  17 hidden");
    named<QComboBox>("starsShown").setCurrentIndex(2);
    EXPECT_EQ(named<QLabel>("starCount").text(), "12,345 stars  -  17 hidden  -  17 listed");
    named<QLineEdit>("starConditions").setText("star < 12");
    EXPECT_TRUE(named<QLabel>("starCount").text().endsWith("  -  3 listed"));
    named<QLineEdit>("starConditions").setText("star <");
    EXPECT_TRUE(named<QLabel>("filterComplaint").isVisible());
    EXPECT_TRUE(named<QLabel>("starCount").text().endsWith("  -  3 listed"))
        << "the last one holds";

    window.selectStar(101); // out of the filter, as a click into the preview may be
    EXPECT_EQ(window.selectedStar(), 101);
    EXPECT_FALSE(named<QLabel>("filterComplaint").isVisible());
}

TEST_F(StarTable, EveryEditOfTheErasuresIsNamed)
{
    window.selectStar(17);
    EXPECT_FALSE(named<QPushButton>("deleteErasure").isEnabled());
    named<QSpinBox>("eraseFeather").setValue(25);
    click({96, 92});
    ASSERT_EQ(lastLabel(), "erase companion");
    ASSERT_EQ(erasures.size(), 1u);
    EXPECT_NEAR(erasures[0].x, 96.0, 0.1);
    EXPECT_NEAR(erasures[0].y, 92.0, 0.1);
    EXPECT_EQ(erasures[0].radius, 4.0);
    EXPECT_EQ(erasures[0].feather, 1.0);
    EXPECT_EQ(erasures[0].mode, 0);
    EXPECT_EQ(window.selectedStar(), 17);

    const zre::StarErasure first = erasures[0];
    named<QSpinBox>("eraseFeather").setValue(100);
    click({105, 86});
    ASSERT_EQ(erasures.size(), 2u);
    EXPECT_EQ(erasures[0], first) << "the feather of new ones alone";
    EXPECT_EQ(erasures[1].feather, 4.0);

    click({96, 92}); // selects
    EXPECT_EQ(erasures.size(), 2u);
    auto& mode = named<QComboBox>("eraseMode");
    mode.setCurrentIndex(2);
    emit mode.activated(2);
    EXPECT_EQ(lastLabel(), "change erasure mode");
    EXPECT_EQ(erasures[0].mode, 2);
    EXPECT_EQ(erasures[1].mode, 0);
    QTest::keyClick(&sprite, Qt::Key_Delete);
    EXPECT_EQ(lastLabel(), "delete erasure");
    ASSERT_EQ(erasures.size(), 1u);
    EXPECT_EQ(erasures[0].feather, 4.0);

    erasures.push_back({5, 5, 2, 1, 0}); // far from the star
    window.refresh();
    named<QPushButton>("clearStarErasures").click();
    EXPECT_EQ(lastLabel(), "clear erasures");
    ASSERT_EQ(erasures.size(), 1u);
    EXPECT_EQ(erasures[0].x, 5.0);
    EXPECT_FALSE(named<QPushButton>("clearStarErasures").isEnabled());
    const qsizetype before = edits.size();
    named<QPushButton>("clearAllErasures").click();
    EXPECT_EQ(lastLabel(), "clear erasures");
    EXPECT_EQ(edits.size(), before + 1);
    EXPECT_TRUE(erasures.empty());
}

TEST_F(StarTable, AnErasedStarKeepsItsRow)
{
    stars[17].erased = true;
    stars[17].depth = -1.0f;
    stars[17].sprite.clear();
    stars[17].alpha.clear();
    window.refresh();
    window.selectStar(17);
    EXPECT_EQ(window.stars().rowCount(), 300);
    const QModelIndex cell = window.stars().index(17, 0);
    EXPECT_EQ(window.stars().data(cell, Qt::ToolTipRole).toString(),
              "The sprite eraser removed this sprite entirely. The row stays so edits never "
              "renumber the table; deleting the erasure brings the star back");
    EXPECT_TRUE(window.stars().data(cell, Qt::ForegroundRole).isValid());
    EXPECT_FALSE(window.stars().data(window.stars().index(16, 0), Qt::ForegroundRole).isValid());
    click({100, 90}); // there is a picture of the place still
    EXPECT_EQ(erasures.size(), 1u);
}

// Base and sprite make the result; the sprite alone stands on black.
TEST_F(StarTable, TheLooksShowWhatIsDrawn)
{
    std::fill(base.data.begin(), base.data.end(), 0.25f);
    std::fill(source.data.begin(), source.data.end(), 1.0f);
    stars = {starAt(100, 90, 0.5f, 9), starAt(108, 90, 0.25f, 5), starAt(92, 90, 0.25f, 5)};
    stars[2].depth = -1.0f;
    struct Case
    {
        startable::Look look;
        int own, neighbour, hidden, around;
    };
    const Case cases[] = {
        {startable::Look::Result, 191, 128, 64, 64},
        {startable::Look::Original, 255, 255, 255, 255},
        {startable::Look::Sprite, 128, 0, 0, 0},
        {startable::Look::Coverage, 255, 0, 0, 0},
    };
    for (const Case& each : cases) {
        const startable::StarPicture picture = startable::starPicture(scene(), 0, each.look, false);
        const auto grey = [&](int x, int y) {
            return qGray(picture.image.pixel(QPoint(x, y) - picture.origin));
        };
        EXPECT_NEAR(grey(100, 90), each.own, 1);
        EXPECT_NEAR(grey(109, 90), each.neighbour, 1);
        EXPECT_NEAR(grey(91, 90), each.hidden, 1);
        EXPECT_NEAR(grey(100, 97), each.around, 1);
    }
    EXPECT_TRUE(startable::starPicture(scene(), 3, startable::Look::Result, false).image.isNull());
    EXPECT_TRUE(startable::starPicture({}, 0, startable::Look::Result, false).image.isNull());
    stars[0].boxX = -2000000000; // what no detector makes must not harm
    stars[0].boxW = 2000000000;
    startable::starPicture(scene(), 0, startable::Look::Sprite, false);
}
