#include <limits>

#include <QStringList>

#include <gtest/gtest.h>

#include "app/session/star_csv.h"

static zre::Star starAt(double x, double y)
{
    zre::Star star;
    star.x = x;
    star.y = y;
    return star;
}

// Read back by the toolkit's own reader of numbers, which knows nothing of the writer.
TEST(StarCsv, EveryNumberReadsBack)
{
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(130.0, -41.0, 2.5, 30.0, 400, 300, wcs));
    zre::Star first = starAt(200.0, 150.0); // the picture's middle
    first.peak = 0.1f;
    first.depth = 0.7f;
    first.boxW = 7;
    first.boxH = 9;
    zre::Star second = starAt(-3.25, 1e300);
    second.depth = -1.0f;
    second.distancePc = 1234.5f;
    second.peak = std::numeric_limits<float>::quiet_NaN();

    const QStringList lines = starsCsv({first, second}, wcs).split('\n');
    ASSERT_EQ(lines.size(), 4); // the last line is ended too
    EXPECT_EQ(lines[0], "index,x,y,peak,depth,width,height,distance_pc,ra_deg,dec_deg");
    const QStringList a = lines[1].split(',');
    const QStringList b = lines[2].split(',');
    ASSERT_EQ(a.size(), 10);
    ASSERT_EQ(b.size(), 10);
    EXPECT_EQ(a.mid(0, 3), QStringList({"0", "200.0000", "150.0000"}));
    EXPECT_EQ(a[3].toFloat(), 0.1f);
    EXPECT_EQ(a[4].toFloat(), 0.7f);
    EXPECT_EQ(a.mid(5, 3), QStringList({"7", "9", ""}));
    EXPECT_NEAR(a[8].toDouble(), 130.0, 1e-6);
    EXPECT_NEAR(a[9].toDouble(), -41.0, 1e-6);
    EXPECT_EQ(b[2].toDouble(), 1e300);
    EXPECT_EQ(b[4].toFloat(), -1.0f);
    EXPECT_EQ(b[7].toFloat(), 1234.5f);

    const QString unsolved = starsCsv({first}, {});
    EXPECT_TRUE(unsolved.endsWith(",7,9,,,\n")) << unsolved.toStdString();
}
