#include "app/session/sky_text.h"

#include <gtest/gtest.h>

TEST(Sexagesimal, CarriesRoundingIntoTheHigherParts)
{
    EXPECT_EQ(sexagesimalRa(0.0), "00:00:00.00");
    EXPECT_EQ(sexagesimalRa(359.99999999), "00:00:00.00");
    EXPECT_EQ(sexagesimalRa(15.0 - 1e-9), "01:00:00.00");
    EXPECT_EQ(sexagesimalRa(131.184682), "08:44:44.32");
    EXPECT_EQ(sexagesimalDec(-0.5), "-00:30:00.0");
    EXPECT_EQ(sexagesimalDec(59.99999999), "+60:00:00.0");
    EXPECT_EQ(sexagesimalDec(-90.0), "-90:00:00.0");
}
