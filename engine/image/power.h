#pragma once

#include <cstddef>

namespace zre {

/// Raises every sample, each in 0 to 1, to `exponent`, which is finite and not negative.
///
/// Exact:   0 and 1 stay, and an exponent of 0 gives 1, as with the C library; a NaN counts as 0.
/// Accuracy: a relative 1e-11 in double (exponents up to 100), so a float is one rounding away.
/// Cost:    a quarter of the C library's; no table, and the same bits on every processor.
void raiseToPower(float* samples, std::size_t size, double exponent);
void raiseToPower(double* samples, std::size_t size, double exponent);

} // namespace zre
