#pragma once

#include <cstddef>

namespace zre {

/// Samples that a pass may read and write beyond the last of a line; they are never kept.
inline constexpr std::size_t kLineSlack = 64;

/// Output lines that one sweep over the columns sums together, so that each load feeds all of them.
inline constexpr std::size_t kLinesTogether = 4;

/// out[x] = sum over t of weights[t] * samples[x + t], the terms added in order of t, from 0.
///
/// Reads up to `kLineSlack` samples beyond `count + taps - 1` and writes as many beyond `count`.
void sumTapsAlongRow(const float* samples, const float* weights, std::size_t taps, float* out,
                     std::size_t count);

/// out[j][x] = sum over t of weights[t] * rows[j + t][x], the terms added in order of t, from 0.
///
/// `rows` holds taps + kLinesTogether - 1 lines, `out` kLinesTogether of `count` samples each.
/// Reads up to 16 samples beyond `count` of each row and writes none.
void sumTapsAcrossRows(const float* const* rows, const float* weights, std::size_t taps,
                       float* const* out, std::size_t count);

} // namespace zre
