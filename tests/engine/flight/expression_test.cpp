#include "engine/flight/expression.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

using zre::ZRExpr;

namespace {

const ZRExpr::Lookup kVariables = [](const std::string& name, double& value) {
    value = 7.0;
    return name == "abc_1";
};

TEST(Expression, Values)
{
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const struct
    {
        std::string text;
        double value;
    } cases[] = {
        {"1+2*3", 7.0},       {"(1+2)*3", 9.0},       {"10-4-3", 3.0},  {"24/4/3", 2.0},
        {"-2*3", -6.0},       {"--5", 5.0},           {"+-+5", -5.0},   {"2--3", 5.0},
        {" \t1 + 2 \t", 3.0}, {"1e3", 1000.0},        {"0x10", 16.0},   {"inf", kInf},
        {"1e999", kInf},      {"1.5", 1.5},           {".5*4", 2.0},    {"$ABC_1*2", 14.0},
        {"-$abc_1", -7.0},    {"2*(3+(4-1))/3", 4.0}, {"1/-0x2", -0.5}, {"3-(-(-1))", 2.0},
    };
    for (const auto& c : cases) {
        ZRExpr expression(c.text, kVariables);
        EXPECT_EQ(expression.evaluate(), c.value) << c.text;
        EXPECT_TRUE(expression.ok()) << c.text << ": " << expression.error();
    }
    const std::string lines = "1+\v\n5";
    ZRExpr first(std::string_view(lines).substr(0, 3), kVariables);
    first.evaluate();
    EXPECT_FALSE(first.ok()) << "read on in the next line";
    const std::string nan = "1/nan";
    ZRExpr expression(nan, kVariables);
    EXPECT_TRUE(std::isnan(expression.evaluate()));
    EXPECT_TRUE(expression.ok());
}

TEST(Expression, Errors)
{
    const struct
    {
        std::string text;
        std::string message;
    } cases[] = {
        {"", "Unexpected end of expression."},
        {"1+", "Unexpected end of expression."},
        {"-", "Unexpected end of expression."},
        {"(1", "Missing ')'."},
        {"(1+(2)", "Missing ')'."},
        {"$", "Expected a variable name after '$'."},
        {"$ abc_1", "Expected a variable name after '$'."},
        {"$Other", "Undefined variable $other"},
        {"*2", "Expected a number, variable, or '('."},
        {"abc", "Expected a number, variable, or '('."},
        {"1/0", "Division by zero."},
        {"1/(2-2)+$nothing", "Division by zero."},
        {"1 2", "Unexpected characters in expression."},
        {"1)", "Unexpected characters in expression."},
        {"2,5", "Unexpected characters in expression."},
        {std::string(501, '-') + "1", "Expression is nested too deeply."},
        {std::string(100000, '(') + "1", "Expression is nested too deeply."},
    };
    for (const auto& c : cases) {
        ZRExpr expression(c.text, kVariables);
        EXPECT_EQ(expression.evaluate(), 0.0) << c.text;
        EXPECT_FALSE(expression.ok()) << c.text;
        EXPECT_EQ(expression.error(), c.message) << c.text;
    }
}

} // namespace
