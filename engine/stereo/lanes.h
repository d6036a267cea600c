#pragma once

#include <cstdint>
#include <cstring>

namespace zre {

/// Four neighbouring samples as one value: as wide as every processor of the platform goes.
using Floats = float __attribute__((vector_size(16)));
using Ints = std::int32_t __attribute__((vector_size(16)));

inline Floats loadFloats(const float* from)
{
    Floats v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

inline Ints loadInts(const std::int32_t* from)
{
    Ints v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

inline void store(Floats v, float* to)
{
    std::memcpy(to, &v, sizeof v);
}
inline void store(Ints v, std::int32_t* to)
{
    std::memcpy(to, &v, sizeof v);
}

/// True when any bit of `v` is set.
inline bool anyBit(Ints v)
{
    using Halves = std::int64_t __attribute__((vector_size(16)));
    const auto halves = reinterpret_cast<Halves>(v);
    return (halves[0] | halves[1]) != 0;
}

/// Neighbours that are tested, landed and copied as one.
inline constexpr int kBlock = 8;

struct Range
{
    float low;
    float high;
};

/// The extremes of `kBlock` samples, none of which is a NaN.
inline Range rangeOf(const float* from)
{
    const Floats a = loadFloats(from);
    const Floats b = loadFloats(from + 4);
    Floats low = a < b ? a : b;
    Floats high = a < b ? b : a;
    const Floats lowTurned = __builtin_shufflevector(low, low, 2, 3, 0, 1);
    const Floats highTurned = __builtin_shufflevector(high, high, 2, 3, 0, 1);
    low = low < lowTurned ? low : lowTurned;
    high = high < highTurned ? highTurned : high;
    return {low[0] < low[1] ? low[0] : low[1], high[0] < high[1] ? high[1] : high[0]};
}

/// True when the `kBlock` entries from `column` on count upwards one by one.
inline bool straight(const std::int32_t* column)
{
    const std::int32_t first = column[0];
    const Ints low = (loadInts(column) - first) ^ Ints { 0, 1, 2, 3 };
    const Ints high = (loadInts(column + 4) - first) ^ Ints { 4, 5, 6, 7 };
    return !anyBit(low | high);
}

/// True when one of the `kBlock` entries from `column` on is negative.
inline bool anyNegative(const std::int32_t* column)
{
    return anyBit((loadInts(column) | loadInts(column + 4)) < 0);
}

/// Lets four pixels land on four neighbouring cells: the nearer wins, the one there when equal.
inline void landFour(const float* depth, Ints pixels, std::int32_t* source, float* z)
{
    const Floats d = loadFloats(depth);
    const Floats there = loadFloats(z);
    const Ints wins = d > there;
    store(wins ? d : there, z);
    store(wins ? pixels : loadInts(source), source);
}

/// Lets one pixel land, without a branch, which noise would have mispredicted.
inline void landOne(float depth, std::int32_t pixel, std::int32_t& source, float& z)
{
    const std::int32_t wins = -static_cast<std::int32_t>(depth > z);
    z = depth > z ? depth : z;
    source = (pixel & wins) | (source & ~wins);
}

} // namespace zre
