#include "app/panel/value_text.h"

#include <gtest/gtest.h>

#include "engine/params/param_ranges.h"

namespace {

const SliderRow kShare{"postWhite", "", 0.01, &zre::ZRParams::postWhite};
const SliderRow kGamma{"postGamma", "", 0.01, &zre::ZRParams::postGamma};
const SliderRow kSigma{"smoothness", "", 0.1, &zre::ZRParams::smoothness, "px"};
const SliderRow kHue{"postHue", "", 1.0, &zre::ZRParams::postHue, "\u00b0"};

const SliderRow kPeak{"minPeak", "", 0.01, &zre::ZRParams::minPeak, "", nullptr, nullptr, "Any"};
const SliderRow kRadius{"maxRadius", "", 1.0, &zre::ZRParams::maxRadius, "px"};
const SliderRow kThreshold{"thresholdSigma", "", 0.1, &zre::ZRParams::thresholdSigma, "\u03c3"};

struct Text
{
    const SliderRow* row;
    double value;
    bool percent;
    const char* text;
};

constexpr std::array kTexts{
    Text{&kShare, 0.3f, true, "30 %"},        Text{&kShare, 0.3f, false, "0.30"},
    Text{&kShare, 0.125, true, "12.5 %"},     Text{&kShare, 1.0, true, "100 %"},
    Text{&kGamma, 0.1f, true, "0.10"},        Text{&kGamma, 5.0, false, "5.00"},
    Text{&kSigma, 50.0, true, "50.0 px"},     Text{&kSigma, 2.034f, true, "2.034 px"},
    Text{&kPeak, 0.0, true, "Any"},           Text{&kPeak, 0.07f, true, "7 %"},
    Text{&kRadius, 14.0, true, "14 px"},      Text{&kThreshold, 6.0, true, "6.0 \u03c3"},
    Text{&kHue, -180.0, true, "-180 \u00b0"}, Text{&kHue, 0.25, true, "0.25 \u00b0"},
};

} // namespace

TEST(ValueText, ShowsStepsShortAndWhatLiesBetweenThem)
{
    for (const Text& each : kTexts)
        EXPECT_EQ(valueText(*each.row, each.value, each.percent), QString(each.text));
}

TEST(ValueText, ReadsBackWhatItShows)
{
    for (const Text& each : kTexts) {
        const std::optional<double> back = readValue(*each.row, each.text, each.percent);
        ASSERT_TRUE(back) << each.text;
        EXPECT_NEAR(*back, each.value, 1e-6) << each.text;
    }
}

TEST(ValueText, TakesWhatPeopleType)
{
    EXPECT_EQ(readValue(kShare, " 40 ", true), 0.4);
    EXPECT_EQ(readValue(kShare, "40%", false), 0.4);
    EXPECT_EQ(readValue(kShare, "0.4", false), 0.4);
    EXPECT_EQ(readValue(kSigma, "2,5", true), 2.5);
    EXPECT_EQ(readValue(kSigma, "2.5px", true), 2.5);
    EXPECT_EQ(readValue(kPeak, "any", true), 0.0);
    EXPECT_EQ(readValue(kThreshold, "4.5", true), 4.5);
    for (const char* nonsense : {"", "px", "%", "two", "inf", "nan", "1e400", "1.2.3", "0x10"})
        EXPECT_FALSE(readValue(kSigma, nonsense, true)) << nonsense;
}
