#include "app/mainwindow/readout.h"

#include <gtest/gtest.h>

#include "app/session/session.h"
#include "app/session/sky_text.h"
#include "tests/support/testkit.h"

namespace {

struct Readout : testing::Test
{
    Session session;
    zre::Image depth = zrtest::noise(6, 4, 0, 2);

    void SetUp() override
    {
        zre::Wcs wcs;
        ASSERT_TRUE(zre::makeSyntheticWcs(83.8, -5.4, 2.0, 30.0, 6, 4, wcs));
        session.installSource("a.png", zrtest::noise(6, 4, 1, 1), wcs, {});
    }
    static QString four(float value) { return QString::number(double(value), 'f', 4); }
};

} // namespace

TEST_F(Readout, NamesPixelValuesDepthAndSkyUnderThePoint)
{
    double ra = 0;
    double dec = 0;
    ASSERT_TRUE(session.wcs.imageToCelestial(4.75, 2.25, ra, dec));
    const std::size_t at = 2 * 6 + 4;
    EXPECT_EQ(readoutText(session, &depth, {4.75, 2.25}).toStdString(),
              ("4, 2   R " + four(session.source.plane(0)[at]) + " G " +
               four(session.source.plane(1)[at]) + " B " + four(session.source.plane(2)[at]) +
               "   depth " + four(depth.plane(0)[at]) + "   RA " + sexagesimalRa(ra) + " Dec " +
               sexagesimalDec(dec))
                  .toStdString());
}

TEST_F(Readout, EachHalfOfAPairReadsTheWholeSource)
{
    const QString single = readoutText(session, nullptr, {1.5, 3.5});
    EXPECT_TRUE(readoutText(session, nullptr, {7.5, 3.5}).isEmpty());
    session.outputMode = 3;
    EXPECT_EQ(readoutText(session, nullptr, {1.5, 3.5}), single);
    EXPECT_EQ(readoutText(session, nullptr, {7.5, 3.5}), single);
    EXPECT_TRUE(readoutText(session, nullptr, {12.0, 3.5}).isEmpty());
}

TEST_F(Readout, BesideThePictureThereIsNothingToRead)
{
    for (const QPointF at : {QPointF(-0.01, 1), QPointF(6, 1), QPointF(1, -0.01), QPointF(1, 4)})
        EXPECT_TRUE(readoutText(session, &depth, at).isEmpty());
    EXPECT_FALSE(readoutText(session, &depth, {5.999, 3.999}).isEmpty());
    EXPECT_TRUE(readoutText(Session(), nullptr, {0, 0}).isEmpty());
}

TEST_F(Readout, AGreyUnsolvedImageHasOneValueAndADepthOfItsOwnSizeOnly)
{
    session.installSource("g.png", zrtest::noise(3, 3, 0, 1), {}, {});
    EXPECT_EQ(readoutText(session, &depth, {0.5, 0.5}), "0, 0   " + four(session.source.data[0]));
}
