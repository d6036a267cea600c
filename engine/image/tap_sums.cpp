#include "engine/image/tap_sums.h"

#include <cstring>

#include "engine/image/multiversion.h"

namespace zre {

/// Eight samples. Spelt out, because the compiler does not keep a block of sums in registers when
/// it finds the vectors by itself. The lanes never meet, so the width of the machine's own vectors
/// does not show in the result.
using Lanes __attribute__((vector_size(32))) = float;
static constexpr std::size_t kLanes = 8;

ZR_KERNEL_STEP void load(Lanes& lanes, const float* from)
{
    std::memcpy(&lanes, from, sizeof lanes);
}

ZR_KERNEL_STEP void store(float* to, const Lanes& lanes)
{
    std::memcpy(to, &lanes, sizeof lanes);
}

/// Sums the taps of `Vectors` vectors of neighbouring samples, all of them in registers.
template <int Vectors>
ZR_KERNEL_STEP void sumRowBlock(const float* samples, const float* weights, std::size_t taps,
                                float* out)
{
    Lanes sums[Vectors] = {};
    for (std::size_t t = 0; t < taps; ++t) {
        const float weight = weights[t];
#pragma GCC unroll 8
        for (int v = 0; v < Vectors; ++v) {
            Lanes lanes;
            load(lanes, samples + t + static_cast<std::size_t>(v) * kLanes);
            sums[v] += weight * lanes;
        }
    }
#pragma GCC unroll 8
    for (int v = 0; v < Vectors; ++v)
        store(out + static_cast<std::size_t>(v) * kLanes, sums[v]);
}

ZR_MULTIVERSION void sumTapsAlongRow(const float* samples, const float* weights, std::size_t taps,
                                     float* out, std::size_t count)
{
    for (std::size_t x = 0; x < count;) {
        if (count - x > 4 * kLanes) {
            sumRowBlock<8>(samples + x, weights, taps, out + x);
            x += 8 * kLanes;
        } else if (count - x > kLanes) {
            sumRowBlock<4>(samples + x, weights, taps, out + x);
            x += 4 * kLanes;
        } else {
            sumRowBlock<1>(samples + x, weights, taps, out + x);
            x += kLanes;
        }
    }
}

/// The sums of a block of kLinesTogether lines by two vectors.
struct ColumnSums
{
    Lanes left[kLinesTogether] = {};
    Lanes right[kLinesTogether] = {};
};

/// Adds a row to every line of the block; the row is tap `t - j` of line j.
ZR_KERNEL_STEP void addToAllLines(ColumnSums& sums, const float* row, const float* weights,
                                  std::size_t t)
{
    Lanes left;
    Lanes right;
    load(left, row);
    load(right, row + kLanes);
#pragma GCC unroll 8
    for (std::size_t j = 0; j < kLinesTogether; ++j) {
        const float weight = weights[t - j];
        sums.left[j] += weight * left;
        sums.right[j] += weight * right;
    }
}

/// As `addToAllLines` at the ends, where the row is a tap of some lines only. A weight of 0 would
/// not do for the others: it would bring a NaN of the row into their sums.
ZR_KERNEL_STEP void addToTouchedLines(ColumnSums& sums, const float* row, const float* weights,
                                      std::size_t taps, std::size_t t)
{
    Lanes left;
    Lanes right;
    load(left, row);
    load(right, row + kLanes);
#pragma GCC unroll 8
    for (std::size_t j = 0; j < kLinesTogether; ++j)
        if (j <= t && t - j < taps) {
            const float weight = weights[t - j];
            sums.left[j] += weight * left;
            sums.right[j] += weight * right;
        }
}

ZR_KERNEL_STEP void sumColumnBlock(const float* const* rows, const float* weights, std::size_t taps,
                                   std::size_t x, ColumnSums& sums)
{
    constexpr std::size_t kFirstFull = kLinesTogether - 1;
    for (std::size_t t = 0; t < kFirstFull; ++t)
        addToTouchedLines(sums, rows[t] + x, weights, taps, t);
    std::size_t t = kFirstFull;
    for (; t < taps; ++t)
        addToAllLines(sums, rows[t] + x, weights, t);
    for (; t < taps + kFirstFull; ++t)
        addToTouchedLines(sums, rows[t] + x, weights, taps, t);
}

ZR_MULTIVERSION void sumTapsAcrossRows(const float* const* rows, const float* weights,
                                       std::size_t taps, float* const* out, std::size_t count)
{
    std::size_t x = 0;
    for (; x + 2 * kLanes <= count; x += 2 * kLanes) {
        ColumnSums sums;
        sumColumnBlock(rows, weights, taps, x, sums);
#pragma GCC unroll 8
        for (std::size_t j = 0; j < kLinesTogether; ++j) {
            store(out[j] + x, sums.left[j]);
            store(out[j] + x + kLanes, sums.right[j]);
        }
    }
    if (x == count)
        return;
    ColumnSums sums;
    sumColumnBlock(rows, weights, taps, x, sums);
    for (std::size_t j = 0; j < kLinesTogether; ++j) {
        float line[2 * kLanes];
        store(line, sums.left[j]);
        store(line + kLanes, sums.right[j]);
        std::memcpy(out[j] + x, line, (count - x) * sizeof(float));
    }
}

} // namespace zre
