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

/// True when every bit of `v` is set.
inline bool allSet(Ints v)
{
    return !anyBit(~v);
}

/// Pixels of a row worked on in one go, so that what is known of each stays in the nearest cache.
inline constexpr int kChunk = 512;

/// Neighbours that are tested, landed and copied as one.
inline constexpr int kBlock = 8;

/// True when the `kBlock` entries from `column` on count upwards one by one.
inline bool straight(const std::int32_t* column)
{
    const std::int32_t first = column[0];
    const Ints low = (loadInts(column) - first) ^ Ints { 0, 1, 2, 3 };
    const Ints high = (loadInts(column + 4) - first) ^ Ints { 4, 5, 6, 7 };
    return !anyBit(low | high);
}

/// True when one of the `kBlock` entries from `from` on equals `value`.
inline bool anyEqual(const float* from, float value)
{
    return anyBit((loadFloats(from) == value) | (loadFloats(from + 4) == value));
}
inline bool anyEqual(const std::int32_t* from, std::int32_t value)
{
    return anyBit((loadInts(from) == value) | (loadInts(from + 4) == value));
}

/// True when one of the `kBlock` entries from `column` on is negative.
inline bool anyNegative(const std::int32_t* column)
{
    return anyBit((loadInts(column) | loadInts(column + 4)) < 0);
}

/// True when the `kBlock` entries from `row` on are equal.
inline bool level(const std::int32_t* row)
{
    return !anyBit((loadInts(row) ^ row[0]) | (loadInts(row + 4) ^ row[0]));
}

/// Stores those lanes of `v` that are set in `where`, without a branch.
inline void storeWhere(Ints where, Ints v, std::int32_t* to)
{
    store(where ? v : loadInts(to), to);
}

/// Lets four pixels land on four neighbouring cells by depth, and tells which did: the nearer wins,
/// the one there when equal.
inline Ints landFour(const float* depth, float* z)
{
    const Floats d = loadFloats(depth);
    const Floats there = loadFloats(z);
    store(d > there ? d : there, z);
    return d > there;
}

/// The same for one pixel: all bits set when it lands. Without a branch, which noise would have
/// mispredicted.
inline std::int32_t landOne(float depth, float& z)
{
    const std::int32_t wins = -static_cast<std::int32_t>(depth > z);
    z = depth > z ? depth : z;
    return wins;
}

inline void storeWhere(std::int32_t where, std::int32_t v, std::int32_t& to)
{
    to = (v & where) | (to & ~where);
}

} // namespace zre
