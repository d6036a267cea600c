#pragma once

namespace zre {

/// Resamples a plane of `srcW` x `srcH` samples to `dstW` x `dstH`, bilinear, with the corner
/// samples of both on each other: row j of the destination lies at (srcH - 1) j / (dstH - 1), or 0
/// when it is the only one. The planes must not overlap. A size below 1 leaves `dst` alone.
void resampleChannel(const float* src, int srcW, int srcH, float* dst, int dstW, int dstH);

} // namespace zre
