#include "engine/inference/resample_channel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace zre {

namespace {

/// Between which two samples a position lies, and how far towards the second.
struct Tap
{
    std::size_t first;
    std::size_t second;
    float share;
};

Tap tapAt(int position, int from, int to)
{
    const double at =
        to > 1 ? (static_cast<double>(from) - 1.0) * position / (static_cast<double>(to) - 1.0)
               : 0.0;
    const int first = std::min(static_cast<int>(std::floor(at)), from - 1);
    const int second = std::min(first, from - 2) + 1;
    return {static_cast<std::size_t>(first), static_cast<std::size_t>(second),
            static_cast<float>(at - first)};
}

/// In this form equal samples stay what they are, so that a flat plane stays flat.
float between(float from, float to, float share)
{
    return from + (to - from) * share;
}

} // namespace

void resampleChannel(const float* src, int srcW, int srcH, float* dst, int dstW, int dstH)
{
    if (srcW < 1 || srcH < 1 || dstW < 1 || dstH < 1)
        return;
    std::vector<Tap> columns(static_cast<std::size_t>(dstW));
    for (int i = 0; i < dstW; ++i)
        columns[static_cast<std::size_t>(i)] = tapAt(i, srcW, dstW);
    const std::size_t width = static_cast<std::size_t>(srcW);
    for (int j = 0; j < dstH; ++j) {
        const Tap row = tapAt(j, srcH, dstH);
        const float* top = src + row.first * width;
        const float* bottom = src + row.second * width;
        for (const Tap& column : columns) {
            const float above = between(top[column.first], top[column.second], column.share);
            const float below = between(bottom[column.first], bottom[column.second], column.share);
            *dst++ = between(above, below, row.share);
        }
    }
}

} // namespace zre
