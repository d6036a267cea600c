#include "app/panel/row_limits.h"

#include <algorithm>
#include <cmath>

#include "app/persist/param_table.h"
#include "engine/params/param_ranges.h"

RowLimits rowLimits(const SliderRow& row)
{
    if (const zre::ParamRange* range = zre::findParamRange(row.name))
        return {range->min, range->max, range->def};
    const double initial = rowValue(row, {});
    const zrproj::ParamKey* key = zrproj::findParamKey(row.name);
    return key && key->limits ? RowLimits{key->limits->min, key->limits->max, initial}
                              : RowLimits{initial, initial, initial};
}

double rowValue(const SliderRow& row, const zre::ZRParams& params)
{
    return std::visit([&](auto field) { return static_cast<double>(params.*field); }, row.field);
}

double boundToRow(const SliderRow& row, double value)
{
    const RowLimits limits = rowLimits(row);
    const double bound = std::isnan(value) ? limits.def : std::clamp(value, limits.min, limits.max);
    if (std::holds_alternative<int zre::ZRParams::*>(row.field))
        return std::round(bound);
    return static_cast<double>(static_cast<float>(bound));
}

void setRowValue(const SliderRow& row, double value, zre::ZRParams& params)
{
    if (const auto* whole = std::get_if<int zre::ZRParams::*>(&row.field))
        params.** whole = static_cast<int>(value);
    else
        params.*std::get<float zre::ZRParams::*>(row.field) = static_cast<float>(value);
}

SliderSteps SliderSteps::even(double min, double max, double scale)
{
    SliderSteps steps;
    steps.m_scale = scale;
    steps.m_lowest = steps.stepOf(min);
    steps.m_highest = steps.stepOf(max);
    return steps;
}

/// The next number after `value`: about a twentieth more, with no more than two digits of its own.
static int nextAfter(int value)
{
    constexpr double kGrowth = 1.05;
    const double grown = std::max(value + 1.0, value * kGrowth);
    const double unit = std::pow(10.0, std::max(0.0, std::floor(std::log10(grown)) - 1.0));
    return static_cast<int>(std::min(std::ceil(grown / unit) * unit, 2e9));
}

SliderSteps SliderSteps::growing(int most)
{
    SliderSteps steps;
    steps.m_values = {0};
    for (int value = 1; value < most; value = nextAfter(value))
        steps.m_values.push_back(value);
    if (most > 0)
        steps.m_values.push_back(most);
    steps.m_highest = static_cast<int>(steps.m_values.size()) - 1;
    return steps;
}

double SliderSteps::valueAt(int step) const
{
    if (m_values.empty())
        return step * m_scale;
    return m_values[static_cast<std::size_t>(std::clamp(step, 0, m_highest))];
}

int SliderSteps::stepOf(double value) const
{
    if (m_values.empty())
        return static_cast<int>(std::lround(value / m_scale));
    const auto nearest = std::min_element(m_values.begin(), m_values.end(), [value](int a, int b) {
        return std::abs(a - value) < std::abs(b - value);
    });
    return static_cast<int>(nearest - m_values.begin());
}
