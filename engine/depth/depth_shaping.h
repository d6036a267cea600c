#pragma once

#include "engine/image/image.h"

namespace zre {

/// Whether a smoothing of this sigma, in pixels, takes place: it is finite and above 0.
bool smooths(float sigma);

/// Whether `smoothDepth` does anything: the sigma smooths and the preservation is a number.
bool smoothsAlongEdges(float sigma, float edgePreservation);

/// Smooths `depth` along the edges of `guide` by a guided filter; `edgePreservation`, 0 to 1, sets
/// how weak an edge may be to stay. Nothing happens when `smoothsAlongEdges` denies it.
void smoothDepth(const Image& guide, Image& depth, float sigma, float edgePreservation,
                 const Progress& progress);

/// Stretches the finite samples to 0 to 1; a flat depth becomes 0, and so does any other sample.
void normaliseDepth(Image& depth);

/// Whether `raiseDepth` with this exponent changes anything: it is finite, not negative and not 1.
bool raises(float gamma);

/// Raises every sample, each in 0 to 1, to the power `gamma`; nothing happens when
/// `raises` denies it.
void raiseDepth(Image& depth, float gamma);

} // namespace zre
