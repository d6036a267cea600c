#pragma once

#include <algorithm>
#include <random>

#include "app/persist/param_table.h"
#include "engine/params/param_ranges.h"

/// A record with every stored number anywhere in its range, every switch and choice at random.
inline zre::ZRParams randomParams(std::mt19937& random)
{
    zre::ZRParams params;
    const auto between = [&random](double min, double max) {
        return std::uniform_real_distribution<double>(min, max)(random);
    };
    zrproj::forEachKey([&](const zrproj::ParamKey& key) {
        const zre::ParamRange* range = zre::findParamRange(key.name);
        const zrproj::ParamLimits limits = range
                                               ? zrproj::ParamLimits{range->min, range->max}
                                               : key.limits.value_or(zrproj::ParamLimits{0.0, 1.0});
        if (const auto* real = std::get_if<float zre::ZRParams::*>(&key.field))
            params.** real = static_cast<float>(between(limits.min, limits.max));
        else if (const auto* whole = std::get_if<int zre::ZRParams::*>(&key.field))
            params.** whole = range ? static_cast<int>(between(range->min, range->max + 0.999)) : 0;
        else if (const auto* flag = std::get_if<bool zre::ZRParams::*>(&key.field))
            params.** flag = between(0.0, 1.0) < 0.5;
    });
    const auto isOutside = [&params](const zre::ParamRange& row) { // a float may round beyond
        return row.get(params) < row.min || row.get(params) > row.max;
    };
    if (std::any_of(zre::kParamRanges.begin(), zre::kParamRanges.end(), isOutside) ||
        std::any_of(zre::kDetectionRanges.begin(), zre::kDetectionRanges.end(), isOutside))
        return randomParams(random);
    return params;
}
