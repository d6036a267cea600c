#include "engine/demo/noise.h"

#include <algorithm>

#include "engine/image/multiversion.h"

namespace zre::demo {

std::uint64_t Random::next()
{
    m_state += 0x9e3779b97f4a7c15U;
    std::uint64_t z = m_state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

float Random::uniform()
{
    return static_cast<float>(next() >> 40) * (1.0f / 16777216.0f);
}

float Random::normal()
{
    float sum = -6.0f;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    return sum;
}

namespace {

constexpr float kTurnCos = 0.8f; // octaves are turned against each other, so that no lattice shows
constexpr float kTurnSin = 0.6f;

inline std::uint32_t mixed(std::uint32_t h)
{
    h ^= h >> 15;
    h *= 0x2c1b3c6dU;
    h ^= h >> 12;
    h *= 0x297a2d39U;
    return h ^ (h >> 15);
}

// The dot product of a lattice point's gradient, drawn from its hash, and the offset from it.
inline float slope(std::uint32_t hash, float dx, float dy)
{
    const std::uint32_t h = mixed(hash);
    const float gx = static_cast<float>(static_cast<std::int32_t>(h & 0xffffU) - 32768);
    const float gy = static_cast<float>(static_cast<std::int32_t>(h >> 16) - 32768);
    return (gx * dx + gy * dy) * (1.0f / 32768.0f);
}

inline float ease(float t)
{
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

inline int floorOf(float v)
{
    const int truncated = static_cast<int>(v);
    return truncated - static_cast<int>(v < static_cast<float>(truncated));
}

// Perlin's gradient noise (2002 form) on hashed lattice points.
inline float gradientNoise(float u, float v, std::uint32_t seed)
{
    const int column = floorOf(u);
    const int row = floorOf(v);
    const float dx = u - static_cast<float>(column);
    const float dy = v - static_cast<float>(row);
    const std::uint32_t left = static_cast<std::uint32_t>(column) * 0x9e3779b1U + seed;
    const std::uint32_t top = static_cast<std::uint32_t>(row) * 0x85ebca77U;
    const std::uint32_t right = left + 0x9e3779b1U;
    const std::uint32_t bottom = top + 0x85ebca77U;
    const float a = slope(left ^ top, dx, dy);
    const float b = slope(right ^ top, dx - 1.0f, dy);
    const float c = slope(left ^ bottom, dx, dy - 1.0f);
    const float d = slope(right ^ bottom, dx - 1.0f, dy - 1.0f);
    const float s = ease(dx);
    const float upper = a + s * (b - a);
    const float lower = c + s * (d - c);
    return upper + ease(dy) * (lower - upper);
}

struct Octave
{
    float cosine = 1.0f; ///< frequency times the turn's cosine
    float sine = 0.0f;
    float amplitude = 1.0f;
    std::uint32_t seed = 0;
};

ZR_MULTIVERSION void addSmooth(const Octave octave, const float* __restrict x,
                               const float* __restrict y, float* __restrict out, int n)
{
    for (int i = 0; i < n; ++i) {
        const float u = octave.cosine * x[i] - octave.sine * y[i];
        const float v = octave.sine * x[i] + octave.cosine * y[i];
        out[i] += octave.amplitude * gradientNoise(u, v, octave.seed);
    }
}

ZR_MULTIVERSION void addRidges(const Octave octave, const float* __restrict x,
                               const float* __restrict y, float* __restrict weight,
                               float* __restrict out, int n)
{
    for (int i = 0; i < n; ++i) {
        const float u = octave.cosine * x[i] - octave.sine * y[i];
        const float v = octave.sine * x[i] + octave.cosine * y[i];
        const float noise = 1.6f * gradientNoise(u, v, octave.seed);
        const float crease = 1.0f - (noise < 0.0f ? -noise : noise);
        const float sharp = crease * crease;
        out[i] += octave.amplitude * sharp * weight[i];
        const float carried = 1.6f * sharp * weight[i];
        weight[i] = carried < 1.0f ? carried : 1.0f;
    }
}

// Calls `add` for each octave the pixels can carry, the last ones fading out.
template <typename Add>
void eachOctave(const Fractal& fractal, float pixel, Add add)
{
    float cosine = fractal.frequency;
    float sine = 0.0f;
    float frequency = fractal.frequency;
    float amplitude = 1.0f;
    for (int i = 0; i < fractal.octaves; ++i) {
        const float pixelsPerCycle = 1.0f / (frequency * pixel);
        const float carried = smoothStep(2.0f, 5.0f, pixelsPerCycle);
        if (carried <= 0.0f)
            return;
        add(Octave{cosine, sine, amplitude * carried,
                   mixed(fractal.seed + static_cast<std::uint32_t>(i) * 0x632be5abU)});
        const float turned = 2.0f * (kTurnCos * cosine - kTurnSin * sine);
        sine = 2.0f * (kTurnSin * cosine + kTurnCos * sine);
        cosine = turned;
        frequency *= 2.0f;
        amplitude *= fractal.gain;
    }
}

ZR_MULTIVERSION void grainKernel(float* __restrict row, int n, float scale, std::uint32_t key)
{
    for (int i = 0; i < n; ++i) {
        const std::uint32_t h = mixed(static_cast<std::uint32_t>(i) * 0x9e3779b1U + key);
        const std::uint32_t sum =
            (h & 0xffU) + ((h >> 8) & 0xffU) + ((h >> 16) & 0xffU) + (h >> 24);
        row[i] += scale * static_cast<float>(static_cast<std::int32_t>(sum) - 510);
    }
}

} // namespace

void fractalRow(const Fractal& fractal, float pixel, const float* x, const float* y, float* out,
                int n)
{
    std::fill_n(out, n, 0.0f);
    eachOctave(fractal, pixel, [&](const Octave& octave) { addSmooth(octave, x, y, out, n); });
}

void ridgedRow(const Fractal& fractal, float pixel, const float* x, const float* y, float* weight,
               float* out, int n)
{
    std::fill_n(out, n, 0.0f);
    std::fill_n(weight, n, 1.0f);
    eachOctave(fractal, pixel,
               [&](const Octave& octave) { addRidges(octave, x, y, weight, out, n); });
    const float scale = 1.0f - fractal.gain;
    for (int i = 0; i < n; ++i)
        out[i] *= scale;
}

void addGrainRow(float* row, int n, float sigma, std::uint32_t key)
{
    constexpr float kSpread = 147.80054f; // of the sum of four bytes
    grainKernel(row, n, sigma / kSpread, mixed(key));
}

} // namespace zre::demo
