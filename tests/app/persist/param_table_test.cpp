#include "app/persist/param_table.h"

#include <climits>
#include <set>

#include <gtest/gtest.h>

#include "app/persist/param_text.h"

using zre::ZRParams;

namespace {

QString textOf(const ZRParams& params, int outputMode)
{
    return zrproj::paramsToText(params, outputMode, {}, {});
}

struct SetCase
{
    const char* key;
    const char* value;
    const char* mention; ///< what the error has to name; null when the value is good
};

void PrintTo(const SetCase& c, std::ostream* out)
{
    *out << c.key << "=" << c.value;
}

class SetByName : public testing::TestWithParam<SetCase>
{
};

} // namespace

TEST_P(SetByName, StoresGoodValuesAndExplainsBadOnes)
{
    const auto& [key, value, mention] = GetParam();
    ZRParams params;
    int outputMode = 2;
    QString error;
    const QString before = textOf(params, outputMode);
    const bool stored = zrproj::setParam(params, outputMode, key, value, &error);
    EXPECT_EQ(stored, mention == nullptr) << error.toStdString();
    EXPECT_EQ(textOf(params, outputMode) != before, mention == nullptr);
    EXPECT_EQ(error.isEmpty(), stored);
    if (mention) {
        EXPECT_TRUE(error.contains(key)) << error.toStdString();
        EXPECT_TRUE(error.contains(mention)) << error.toStdString();
    }
    EXPECT_EQ(zrproj::setParam(params, outputMode, key, value, nullptr), stored);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SetByName,
    testing::Values(
        SetCase{"smoothness", "3.25", nullptr}, SetCase{"smoothness", " 1e1 ", nullptr},
        SetCase{"smoothness", "50.001", "from 0 to 50"},
        SetCase{"smoothness", "-1", "from 0 to 50"}, SetCase{"smoothness", "2,5", "from 0 to 50"},
        SetCase{"smoothness", "nan", "from 0 to 50"}, SetCase{"smoothness", "inf", "from 0 to 50"},
        SetCase{"smoothness", "", "from 0 to 50"}, SetCase{"starAbsFarPc", "1e300", "parameter"},
        SetCase{"wiggleFps", "30", nullptr},
        SetCase{"wiggleFps", "30.5", "whole number from 1 to 60"},
        SetCase{"wiggleFps", "0", "from 1 to 60"}, SetCase{"outputMode", "6", nullptr},
        SetCase{"outputMode", "7", "from 0 to 6"}, SetCase{"starInputMode", "-1", "from 0 to 3"},
        SetCase{"invertDepth", "1", nullptr}, SetCase{"invertDepth", "True", nullptr},
        SetCase{"floorAuto", "off", nullptr}, SetCase{"floorAuto", "2", "on"},
        SetCase{"colorDepthEntries", "1,0.5,0,0,0.2,1;0,1,1,1,0,0", nullptr},
        SetCase{"colorDepthEntries", "1,0.5,0,0,0.2", "tolerance"},
        SetCase{"colorDepthEntries", "1,0,0,0,0,\n1", "tolerance"},
        SetCase{"starErasures", "10,20,3.5,1,2", nullptr},
        SetCase{"starErasures", "10,20,0,1,2", "radius"},
        SetCase{"smoothnes", "1", "\"smoothness\""}, SetCase{"Convergence", "1", "\"convergence\""},
        SetCase{"starMaskId", "1", "unknown"}, SetCase{"objectId", "1", "\"objectFit\""},
        SetCase{"syntheticStars", "1", "unknown"}));

TEST(ParamList, HoldsEveryParameterWithALegalDefaultAndAMeaning)
{
    std::set<QString> meanings;
    const auto list = zrproj::parameterList();
    EXPECT_EQ(list.size(),
              98u - 3u - 4u + 7u + 1u); // without retired and role keys; detection and erasures
    for (const zrproj::ParamInfo& info : list) {
        EXPECT_TRUE(meanings.insert(info.meaning).second) << info.name.toStdString();
        EXPECT_GT(info.meaning.size(), 5) << info.name.toStdString();
        ZRParams params;
        int outputMode = 2;
        QString error;
        EXPECT_TRUE(zrproj::setParam(params, outputMode, info.name, info.defaultText, &error))
            << error.toStdString();
        EXPECT_EQ(textOf(params, outputMode), textOf(ZRParams{}, 2)) << info.name.toStdString();
    }
}

TEST(ParamList, BothEndsOfEveryRangeAreTakenAndNothingBeyond)
{
    for (const zrproj::ParamInfo& info : zrproj::parameterList()) {
        if (!info.hasRange)
            continue;
        ZRParams params;
        int outputMode = 2;
        const auto takes = [&](double value) {
            return zrproj::setParam(params, outputMode, info.name, QString::number(value, 'g', 17),
                                    nullptr);
        };
        EXPECT_TRUE(takes(info.min)) << info.name.toStdString();
        EXPECT_TRUE(takes(info.max)) << info.name.toStdString();
        for (const double end : {info.min, info.max}) // as a float holds it, and as a text tells it
            EXPECT_TRUE(takes(static_cast<double>(static_cast<float>(end))))
                << info.name.toStdString();
        EXPECT_FALSE(takes(info.min - 1)) << info.name.toStdString();
        EXPECT_FALSE(takes(info.max * 1.01 + 1)) << info.name.toStdString();
    }
}
