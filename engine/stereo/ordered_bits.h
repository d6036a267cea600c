#pragma once

#include <cstdint>

namespace zre {

/// A number that orders as the float of these bits does, and turns back by the same step; -0 is
/// below 0, and a NaN lies beyond infinity on its sign's side.
constexpr std::int32_t orderedBits(std::int32_t bits)
{
    return bits ^ ((bits >> 31) & 0x7fffffff);
}

} // namespace zre
