#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zre {

/// Counts of 1024 equal bins over 0 to 1.
///
/// Values beyond the range count in the end bins, a NaN in bin 0.
struct Histogram
{
    static constexpr int kBins = 1024;
    std::array<std::uint32_t, kBins> count{};

    /// The first bin at which the running count reaches `target`, or -1 when the walk finds none.
    int binReaching(std::uint64_t target) const;

    /// The centre of a bin: (bin + 0.5) / 1024.
    static double centre(int bin) { return (bin + 0.5) * 0.0009765625; }
};

/// Counts `size` samples into bins clamp(floor(v * 1024), 0, 1023).
Histogram histogramOf(const float* samples, std::size_t size);

/// As `histogramOf`, but counts only the samples strictly above `floor`.
Histogram histogramAbove(const float* samples, std::size_t size, double floor);

} // namespace zre
