#include "app/stars/star_table_model.h"

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "app/stars/star_filter.h"
#include "tests/app/stars/some_stars.h"

using startable::Column;
using startable::columnNumber;

namespace {

zre::Wcs solution(int side)
{
    zre::Wcs wcs;
    EXPECT_TRUE(zre::makeSyntheticWcs(150.0, 2.0, 3600.0 / side, 20.0, side, side, wcs));
    return wcs;
}

struct Table
{
    StarTableModel model;
    StarFilter filter{model};

    std::vector<int> order() const
    {
        std::vector<int> rows;
        for (int row = 0; row < filter.rowCount(); ++row)
            rows.push_back(filter.mapToSource(filter.index(row, 0)).row());
        return rows;
    }
    QString shown(int row, Column column) const
    {
        return model.data(model.index(row, columnNumber(column)), Qt::DisplayRole).toString();
    }
};

} // namespace

TEST(StarTableModel, SortsByNumberWithTheUnknownLast)
{
    Table table;
    std::vector<zre::Star> stars;
    for (const float distance : {900.0f, 0.0f, 1000.0f, 12.5f, 99.0f})
        stars.push_back(starAt(3, 3, 0.5f)), stars.back().distancePc = distance;
    table.model.setStars(stars, {});
    table.filter.sort(columnNumber(Column::Distance), Qt::AscendingOrder);
    EXPECT_EQ(table.order(), (std::vector{3, 4, 0, 2, 1}));
    table.filter.sort(columnNumber(Column::Distance), Qt::DescendingOrder);
    EXPECT_EQ(table.order(), (std::vector{2, 0, 4, 3, 1}));
    EXPECT_EQ(table.shown(3, Column::Distance), "12.5 pc");
    EXPECT_EQ(table.shown(1, Column::Distance), "");
    EXPECT_EQ(table.shown(0, Column::Ra), "") << "without a solution";
}

TEST(StarTableModel, AsksTheSolutionForNoMoreThanIsSeen)
{
    constexpr int kSide = 4000;
    Table table;
    std::vector<zre::Star> stars = scattered(100000, kSide, 4);
    table.model.setStars(stars, solution(kSide));
    table.filter.sort(columnNumber(Column::Peak), Qt::DescendingOrder);
    ASSERT_EQ(table.filter.rowCount(), 100000);
    EXPECT_EQ(table.model.skyLookups(), 0);
    double ra = 0.0;
    double dec = 0.0;
    ASSERT_TRUE(solution(kSide).imageToCelestial(stars[7].x, stars[7].y, ra, dec));
    EXPECT_EQ(table.model.value(7, Column::Ra), ra);
    EXPECT_EQ(table.model.value(7, Column::Dec), dec);
    EXPECT_EQ(table.model.skyLookups(), 1);

    table.filter.sort(columnNumber(Column::Ra), Qt::AscendingOrder);
    const std::vector<int> order = table.order();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end(), [&](int a, int b) {
        return table.model.value(a, Column::Ra) < table.model.value(b, Column::Ra);
    }));
    EXPECT_EQ(table.model.skyLookups(), 100000) << "once a star";

    // What moves is asked again, the rest not; new depths move nothing.
    stars[7].x += 1.0;
    table.model.setStars(stars, solution(kSide));
    const int before = table.model.skyLookups(); // another solution: nothing of the old one holds
    table.model.value(8, Column::Ra);
    EXPECT_EQ(table.model.skyLookups(), before + 1);
}

TEST(StarTableModel, ConditionsAreReadOrRefused)
{
    using startable::Comparison;
    using startable::Condition;
    struct Case
    {
        const char* text;
        std::optional<std::vector<Condition>> expected;
    };
    const Case cases[] = {
        {"", std::vector<Condition>{}},
        {"peak>0.5", {{{Column::Peak, Comparison::Greater, 0.5}}}},
        {"  Peak >= 0,5  and depth<.2; ra = 1e2",
         {{{Column::Peak, Comparison::GreaterOrEqual, 0.5},
           {Column::Depth, Comparison::Less, 0.2},
           {Column::Ra, Comparison::Equal, 100.0}}}},
        {"dec <= -41.5", {{{Column::Dec, Comparison::LessOrEqual, -41.5}}}},
        {"peak", std::nullopt},
        {"peak > ", std::nullopt},
        {"peak > 1.2.3", std::nullopt},
        {"mass > 1", std::nullopt},
        {"peak > 0.5 and", std::nullopt},
        {"peak > 0.5 bright", std::nullopt},
        {"peak > 0.5x", std::nullopt},
    };
    for (const Case& each : cases) {
        QString error;
        EXPECT_EQ(startable::readConditions(each.text, error), each.expected) << each.text;
        EXPECT_EQ(error.isEmpty(), each.expected.has_value()) << each.text;
    }
}

TEST(StarTableModel, FiltersByConditionsAndByWhatIsShown)
{
    Table table;
    std::vector<zre::Star> stars = scattered(500, 300, 8);
    for (std::size_t i = 0; i < stars.size(); i += 3)
        stars[i].depth = -1.0f;
    stars[6].erased = true;
    table.model.setStars(stars, {});
    EXPECT_EQ(table.model.hiddenCount(), 167);

    const auto expect = [&](const char* conditions, startable::Shown shown, auto&& holds) {
        QString error;
        table.filter.setConditions(*startable::readConditions(conditions, error));
        table.filter.setShown(shown);
        std::vector<int> wanted;
        for (std::size_t i = 0; i < stars.size(); ++i)
            if (holds(stars[i]))
                wanted.push_back(static_cast<int>(i));
        EXPECT_EQ(table.order(), wanted) << conditions;
    };
    using startable::Shown;
    expect("peak > 0.5 size <= 7", Shown::All,
           [](const zre::Star& star) { return star.peak > 0.5f && star.boxW <= 7; });
    expect("", Shown::Drawn, [](const zre::Star& star) { return star.depth >= 0.0f; });
    expect("x < 100", Shown::Hidden,
           [](const zre::Star& star) { return star.depth < 0.0f && star.x < 100.0; });
    expect("", Shown::Erased, [](const zre::Star& star) { return star.erased; });
    expect("distance > 0", Shown::All, [](const zre::Star&) { return false; });
}

// Few changes and many take different roads to the views; both keep what points into the table.
TEST(StarTableModel, RowsStayThemselvesWhenTheListIsUpdated)
{
    for (const std::size_t changes : {1u, 20u, 400u}) {
        Table table;
        std::vector<zre::Star> stars = scattered(500, 300, 8);
        table.model.setStars(stars, {});
        table.filter.sort(columnNumber(Column::Peak), Qt::AscendingOrder);
        const QPersistentModelIndex kept =
            table.filter.mapFromSource(table.model.index(11, columnNumber(Column::Peak)));
        for (std::size_t i = 0; i < changes; ++i)
            stars[(11 + i) % stars.size()].peak = 1.0f - stars[(11 + i) % stars.size()].peak;
        table.model.setStars(stars, {});
        ASSERT_TRUE(kept.isValid());
        EXPECT_EQ(table.filter.mapToSource(kept).row(), 11);
        std::vector<int> wanted(stars.size());
        std::iota(wanted.begin(), wanted.end(), 0);
        std::stable_sort(wanted.begin(), wanted.end(), [&](int a, int b) {
            return stars[static_cast<std::size_t>(a)].peak <
                   stars[static_cast<std::size_t>(b)].peak;
        });
        EXPECT_EQ(table.order(), wanted) << changes;
    }
}

TEST(StarTableModel, FindsTheNearestStarWithinReach)
{
    StarTableModel model;
    const std::vector<zre::Star> stars = scattered(300, 200, 2);
    model.setStars(stars, {});
    for (const QPointF place : {QPointF(0, 0), QPointF(101.5, 77.25), QPointF(199, 3)})
        for (const double reach : {0.5, 6.0, 50.0}) {
            int wanted = -1;
            for (int i = 0; i < 300; ++i) {
                const auto far = [&](int star) {
                    const zre::Star& each = stars[static_cast<std::size_t>(star)];
                    return std::hypot(each.x - place.x(), each.y - place.y());
                };
                if (far(i) <= reach && (wanted < 0 || far(i) < far(wanted)))
                    wanted = i;
            }
            EXPECT_EQ(model.nearest(place, reach), wanted);
        }
}
