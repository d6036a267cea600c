#include "engine/params/param_ranges.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

TEST(ParamRanges, AFreshRecordReadsTheDefaultOfEveryRow)
{
    const zre::ZRParams fresh;
    for (const zre::ParamRange& row : zre::kParamRanges)
        EXPECT_FLOAT_EQ(row.get(fresh), row.def) << row.name;
}

TEST(ParamRanges, ClampingBindsKnownNamesAndLeavesOthers)
{
    for (const zre::ParamRange& row : zre::kParamRanges) {
        EXPECT_EQ(zre::findParamRange(row.name), &row);
        EXPECT_EQ(zre::clampParam(row.name, row.max + 1.0), row.max);
        EXPECT_EQ(zre::clampParam(row.name, row.min - 1.0), row.min);
        EXPECT_EQ(zre::clampParam(row.name, -std::numeric_limits<double>::infinity()), row.min);
        const double inside = row.min + 0.25 * (row.max - row.min);
        EXPECT_EQ(zre::clampParam(row.name, inside), inside);
        EXPECT_EQ(zre::clampParam(row.name, std::nan("")), row.def);
    }
    EXPECT_EQ(zre::findParamRange("notAParameterAtAll"), nullptr);
    EXPECT_EQ(zre::findParamRange("starInputMode"), nullptr);
    EXPECT_EQ(zre::clampParam("notAParameterAtAll", -1e300), -1e300);
}
