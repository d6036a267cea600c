#pragma once

#include <cstdint>

namespace zre::demo {

/// A stream of numbers from a seed (SplitMix64, Steele, Lea and Flood 2014): integers and exact
/// conversions only, so the stream is the same everywhere.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : m_state(seed)
    {
    }

    std::uint64_t next();
    /// 0 up to, but without, 1.
    float uniform();
    float between(float low, float high) { return low + (high - low) * uniform(); }
    /// Nearly normal, mean 0 and variance 1, within +-6: twelve uniform values.
    float normal();

private:
    std::uint64_t m_state;
};

/// exp(-x) for x of 0 and above, within 4e-6, from arithmetic alone: a library's exp may differ in
/// its last bit from one machine to the next.
inline float expMinus(float x)
{
    const float t = x * 0.125f;
    const float series =
        1.0f + t * (1.0f + t * (0.5f + t * (0.16666667f + t * (0.041666668f + t * 0.0083333333f))));
    const float square = series * series;
    const float fourth = square * square;
    return 1.0f / (fourth * fourth);
}

/// 0 up to `from`, 1 beyond `to`, a cubic between.
inline float smoothStep(float from, float to, float x)
{
    const float t = (x - from) / (to - from);
    const float low = t > 0.0f ? t : 0.0f;
    const float bound = low < 1.0f ? low : 1.0f;
    return bound * bound * (3.0f - 2.0f * bound);
}

/// Noise summed over octaves, each of twice the frequency of the one before, down to the finest
/// that the pixels can carry.
struct Fractal
{
    float frequency = 1.0f; ///< of the first octave, cycles per unit
    float gain = 0.5f;      ///< amplitude of an octave over the one before
    int octaves = 12;       ///< at most
    std::uint32_t seed = 0;
};

/// Gradient noise, mean 0, about -0.7 to 0.7 for a gain of 0.5, at `n` points; `pixel` is the
/// spacing of neighbouring points in units, and octaves below two pixels are left out.
void fractalRow(const Fractal& fractal, float pixel, const float* x, const float* y, float* out,
                int n);

/// Ridged noise, 0 to about 1: bright creases between soft hollows, finer ones riding on the
/// coarser (Musgrave's ridged multifractal). `weight` is scratch of `n` values.
void ridgedRow(const Fractal& fractal, float pixel, const float* x, const float* y, float* weight,
               float* out, int n);

/// Adds grain of standard deviation `sigma` to one row of a channel; `key` tells rows and channels
/// apart.
void addGrainRow(float* row, int n, float sigma, std::uint32_t key);

} // namespace zre::demo
