#include "engine/depth/color_depth_rows.h"

#include <random>

#include <gtest/gtest.h>

using zre::ColorDepthRow;

static std::vector<ColorDepthRow> parsed(const std::string& text)
{
    std::vector<ColorDepthRow> rows(3);
    zre::parseColorDepthRows(text, rows);
    return rows;
}

TEST(ColorDepthRows, FieldsLandWhereTheyBelong)
{
    const auto rows = parsed(";1,0.25,0.5,0.75,0.125,1;;-7, 1e-1,+.5,2.,-3,0.0625 and more;");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_TRUE(rows[0].enabled);
    EXPECT_EQ(rows[0].r, 0.25f);
    EXPECT_EQ(rows[0].g, 0.5f);
    EXPECT_EQ(rows[0].b, 0.75f);
    EXPECT_EQ(rows[0].tolerance, 0.125f);
    EXPECT_EQ(rows[0].depth, 1.0f);
    EXPECT_TRUE(rows[1].enabled);
    EXPECT_EQ(rows[1].r, 0.1f);
    EXPECT_EQ(rows[1].g, 0.5f);
    EXPECT_EQ(rows[1].b, 2.0f);
    EXPECT_EQ(rows[1].tolerance, -3.0f);
    EXPECT_EQ(rows[1].depth, 0.0625f);
}

TEST(ColorDepthRows, APieceThatLacksANumberIsDroppedAlone)
{
    for (const char* piece : {"1,1,1,1,1", "1,1,1,1,1,", "x,1,1,1,1,1", "1,1,,1,1,1", "1;1,1,1,1,1",
                              "1.5,1,1,1,1,1", "1,1,nan,1,1,1", "1,1,1,inf,1,1", "1,1,1,1,1e99,1",
                              "99999999999,1,1,1,1,1", "1,+-1,1,1,1,1", "1 ,1,1,1,1,1"}) {
        EXPECT_EQ(parsed(std::string(piece) + ";0,0,0,0,0,0").size(), 1u) << piece;
    }
}

TEST(ColorDepthRows, EveryPrefixGivesTheRowsThatAreWhole)
{
    const std::string text = "1,2,3,4,5,6;0,7,8,9,1,2";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::size_t whole = (length >= 11 ? 1u : 0u) + (length >= 23 ? 1u : 0u);
        EXPECT_EQ(parsed(text.substr(0, length)).size(), whole) << length;
    }
}

TEST(ColorDepthRows, WrittenRowsReadBackToFourDecimals)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<float> value(-2.0f, 2.0f);
    std::vector<ColorDepthRow> rows(10);
    for (ColorDepthRow& row : rows)
        row = {random() % 2 == 0, value(random), value(random),
               value(random),     value(random), value(random)};
    const std::string text = zre::colorDepthRowsText(rows);
    const auto back = parsed(text);
    ASSERT_EQ(back.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(back[i].enabled, rows[i].enabled);
        for (float ColorDepthRow::*field : {&ColorDepthRow::r, &ColorDepthRow::g, &ColorDepthRow::b,
                                            &ColorDepthRow::tolerance, &ColorDepthRow::depth})
            EXPECT_NEAR(back[i].*field, rows[i].*field, 0.5001e-4);
    }
    EXPECT_EQ(zre::colorDepthRowsText(back), text);
}

TEST(ColorDepthRows, TheLargestNumbersAreWrittenWhole)
{
    const std::string text = zre::colorDepthRowsText({{true, 3.4e38f, -3.4e38f, 0, 0, 0}});
    EXPECT_EQ(parsed(text).at(0).g, -3.4e38f);
}
