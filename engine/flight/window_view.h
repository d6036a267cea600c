#pragma once

#include <cstdint>
#include <vector>

#include "engine/image/image.h"
#include "engine/stereo/eye.h"

namespace zre {

/// The part of the eye that a frame shows, in pixels.
struct Window
{
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
};

/// Between which two samples of a line a place lies.
struct Tap
{
    std::int32_t low = 0;
    std::int32_t high = 0;
    double part = 0.0; ///< of the way from the lower to the higher
};

/// Those of the pixels of a line, field by field for the sake of vectors.
struct LineTaps
{
    std::vector<std::int32_t> low;
    std::vector<std::int32_t> high;
    std::vector<double> part;
};

/// Of the pixels of a frame that is not turned.
struct Taps
{
    LineTaps columns;
    std::vector<Tap> rows;
};

/// Where a turned window lies: its centre and the directions of its axes.
struct Turn
{
    double cosine;
    double sine;
    double centreX;
    double centreY;
};

/// The taps of an output of `out`'s size that shows `window` of an eye of `eye`'s size.
Taps tapsOf(const Window& window, const Image& eye, const Image& out);

Turn turnOf(const Window& window, double rollDeg);

/// What a frame that is not turned shows of the eye.
EyeWindow shownBy(const Taps& taps);

/// What a turned frame shows of the eye, with a margin for the rounding of its places.
EyeWindow shownBy(const Turn& turn, const Window& window, const Image& out);

/// Fills `out` from the window of the eye, bilinearly.
void showWindow(const Image& eye, const Taps& taps, Image& out);

/// The same for a turned window; where it `reachesOver` the eye, the eye's colours go on softly.
void showTurnedWindow(const Image& eye, const Window& window, const Turn& turn, bool reachesOver,
                      Image& out);

} // namespace zre
