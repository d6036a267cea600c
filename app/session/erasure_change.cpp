#include "app/session/erasure_change.h"

#include <algorithm>
#include <cmath>

static bool contains(const std::vector<zre::StarErasure>& list, const zre::StarErasure& erasure)
{
    return std::find(list.begin(), list.end(), erasure) != list.end();
}

std::vector<zre::StarErasure> changedErasures(const std::vector<zre::StarErasure>& before,
                                              const std::vector<zre::StarErasure>& now)
{
    std::vector<zre::StarErasure> changed;
    for (const zre::StarErasure& erasure : before)
        if (!contains(now, erasure))
            changed.push_back(erasure);
    for (const zre::StarErasure& erasure : now)
        if (erasure.mode != 0 || !contains(before, erasure))
            changed.push_back(erasure);
    return changed;
}

/// The first or last pixel of a side, bound to 0 to `size`; a place that is no number gives 0.
static int bound(double place, int size)
{
    return place > 0.0 ? static_cast<int>(std::min(place, static_cast<double>(size))) : 0;
}

std::vector<std::uint8_t> erasureSearchMask(const std::vector<zre::StarErasure>& erasures,
                                            int width, int height)
{
    const auto stride = static_cast<std::size_t>(width);
    std::vector<std::uint8_t> mask(stride * static_cast<std::size_t>(height));
    for (const zre::StarErasure& e : erasures) {
        const double half = e.radius + e.feather;
        const int left = bound(std::floor(e.x - half) - 1.0, width);
        const int right = bound(std::floor(e.x + half) + 2.0, width);
        const int bottom = bound(std::floor(e.y + half) + 2.0, height);
        for (int y = bound(std::floor(e.y - half) - 1.0, height); y < bottom; ++y) {
            const auto row = mask.begin() + static_cast<std::ptrdiff_t>(y) * width;
            if (left < right)
                std::fill(row + left, row + right, std::uint8_t{1});
        }
    }
    return mask;
}
