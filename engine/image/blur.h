#pragma once

#include "engine/image/image.h"

namespace zre {

/// Blurs every channel of `img` in place with a separable Gaussian.
///
/// Units:   `sigma` in pixels, of which more than 4096 count as 4096; `cutoff`, in (0, 1), is the
///          weight at which the kernel ends, and a value outside that range counts as 0.01.
/// Borders: the edge sample repeats, so a constant image stays constant up to rounding.
/// Errors:  none; with a `sigma` that is not above 0, or not finite, the image stays bit for bit
///          as it was.
/// Order:   each sample is the float sum of its taps from -r to +r, with
///          r = max(1, ceil(sqrt(-2 ln cutoff) * sigma)); rows first, then columns.
/// Cost:    one scratch plane for the whole call, O(pixels * sigma).
void gaussianBlur(Image& img, float sigma, float cutoff, const Progress& progress);

/// Makes `blurred` what `source` is after `gaussianBlur`, without a copy of it first. The two are
/// different images.
void gaussianBlur(const Image& source, Image& blurred, float sigma, float cutoff,
                  const Progress& progress);

/// The local mean under a Gaussian: `gaussianBlur(img, sigma, 0.01, progress)`, or nothing when
/// `sigma` is not above 0.
void localMean(Image& img, double sigma, const Progress& progress);

/// Smooths `target` in place along the edges of `guide` (guided filter, He et al. 2013, with
/// Gaussian means).
///
/// Shape:   both of one channel and of the same size, which is the caller's duty.
/// Units:   `sigma` in pixels; `eps` is added to the guide's local variance as it stands.
/// Errors:  none; a `sigma` or an `eps` that is not finite leaves `target` as it was.
/// Cost:    six local means, two passes in double precision, four planes of scratch.
void guidedFilter(const Image& guide, Image& target, double sigma, float eps,
                  const Progress& progress);

} // namespace zre
