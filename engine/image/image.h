#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zre {

/// The raster all pixel work runs on: planar 32-bit floats, nominally 0 to 1.
///
/// Channel c of pixel (x, y) stands at `c*width*height + y*width + x`; red, green and blue are
/// planes 0, 1, 2. Nothing clamps the values. In a depth map 1 is nearest and 0 farthest.
///
/// Rules common to every pixel function of the engine, so that each documents only what is its own:
/// - an image that is not `usable()` is left alone, as is the output of a function given one;
/// - functions are reentrant, hold no state and start no thread;
/// - an empty progress function means no reporting; a set one gets the fraction, 0 to 1, of that
///   call's own work, and cannot stop it;
/// - sums run in the order stated, in the precision stated: the same bits on every processor.
struct Image
{
    int width = 0;
    int height = 0;
    int channels = 0;   ///< 1 or 3
    int colorModel = 0; ///< 0 one channel, 1 RGB
    std::vector<float> data;

    Image() = default;

    /// A zero-filled image; negative sizes count as 0. `colorModel` 1 gives three channels,
    /// anything else one. Throws std::length_error when the sample count exceeds what the vector
    /// can hold.
    Image(int width, int height, int colorModel);

    bool usable() const { return width >= 1 && height >= 1 && channels >= 1; }
    std::size_t pixelCount() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    float* plane(int channel)
    {
        return data.data() + pixelCount() * static_cast<std::size_t>(channel);
    }
    const float* plane(int channel) const
    {
        return data.data() + pixelCount() * static_cast<std::size_t>(channel);
    }
    bool sameSize(const Image& other) const
    {
        return width == other.width && height == other.height;
    }
};

using Progress = std::function<void(double)>;
using StageText = std::function<void(const std::string&)>;

/// Maps the fraction 0 to 1 of a nested step into `from` to `to` of the caller's own; empty stays
/// empty.
Progress subRange(const Progress& progress, double from, double to);

} // namespace zre
