#pragma once

#include "engine/image/image.h"

namespace zre {

/// A midtones stretch of linear data: v' = mtf(midtones, clamp((v - shadows) / (1 - shadows), 0,
/// 1)).
struct MidtonesStretch
{
    double shadows = 0.0;
    double midtones = 0.5; ///< 0.5 is the identity

    bool isIdentity() const { return shadows == 0.0 && midtones == 0.5; }
};

/// The midtones transfer function: maps 0 to 0, `midtones` to 0.5 and 1 to 1; a rational curve
/// between.
double midtonesTransfer(double midtones, double value);

/// The exact median of the samples above 0, over all channels alike: what is 0 or NaN is a part of
/// the frame without data. 0 when there is none.
double sampleMedian(const Image& img);

/// The stretch that brings the median of `img`, over all its channels alike, to `targetBackground`,
/// with the shadows clipped 2.8 normalised median deviations below the median. Samples without data
/// (0, NaN) do not count. One stretch serves all channels, so that the colours stay as they are.
/// The identity for an unusable or flat image.
MidtonesStretch autoStretch(const Image& img, double targetBackground = 0.25);

/// Applies `stretch` to every sample of `img` in place; the result lies in 0 to 1.
void applyStretch(Image& img, const MidtonesStretch& stretch);

} // namespace zre
