#include "engine/params/param_ranges.h"

#include <cmath>

namespace zre {

const ParamRange* findParamRange(const std::string& name)
{
    const auto hasName = [&](const ParamRange& row) { return name == row.name; };
    if (const auto row = std::find_if(kParamRanges.begin(), kParamRanges.end(), hasName);
        row != kParamRanges.end())
        return &*row;
    const auto row = std::find_if(kDetectionRanges.begin(), kDetectionRanges.end(), hasName);
    return row == kDetectionRanges.end() ? nullptr : &*row;
}

double clampParam(const std::string& name, double value)
{
    const ParamRange* row = findParamRange(name);
    if (!row)
        return value;
    return std::isnan(value) ? row->def : std::clamp(value, row->min, row->max);
}

} // namespace zre
