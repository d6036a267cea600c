#include "engine/xisf/sample_convert.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "engine/image/multiversion.h"

namespace zre {

static_assert(std::endian::native == std::endian::little);

ZR_MULTIVERSION static void fromUInt8(const std::uint8_t* __restrict bytes, std::size_t count,
                                      float* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<float>(bytes[i]) * (1.0F / 255.0F);
}

ZR_MULTIVERSION static void fromUInt16(const std::uint8_t* __restrict bytes, std::size_t count,
                                       float* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t sample;
        std::memcpy(&sample, bytes + 2 * i, sizeof sample);
        out[i] = static_cast<float>(sample) * (1.0F / 65535.0F);
    }
}

ZR_MULTIVERSION static void fromUInt32(const std::uint8_t* __restrict bytes, std::size_t count,
                                       float* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t sample;
        std::memcpy(&sample, bytes + 4 * i, sizeof sample);
        out[i] = static_cast<float>(static_cast<double>(sample) * 2.3283064370807974e-10);
    }
}

/// In place, so that a raw block can be read to where its pixels belong.
ZR_MULTIVERSION static void limitToUnit(float* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float atMostOne = samples[i] <= 1.0F ? samples[i] : 1.0F; // a NaN becomes 1
        samples[i] = atMostOne < 0.0F ? 0.0F : atMostOne;
    }
}

static void fromFloat32(const std::uint8_t* bytes, std::size_t count, float* out)
{
    if (reinterpret_cast<const std::uint8_t*>(out) != bytes)
        std::memcpy(out, bytes, count * sizeof *out);
    limitToUnit(out, count);
}

ZR_MULTIVERSION static void swapPairs(std::uint8_t* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t sample;
        std::memcpy(&sample, bytes + 2 * i, sizeof sample);
        sample = __builtin_bswap16(sample);
        std::memcpy(bytes + 2 * i, &sample, sizeof sample);
    }
}

ZR_MULTIVERSION static void swapQuads(std::uint8_t* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t sample;
        std::memcpy(&sample, bytes + 4 * i, sizeof sample);
        sample = __builtin_bswap32(sample);
        std::memcpy(bytes + 4 * i, &sample, sizeof sample);
    }
}

static void swapNothing(std::uint8_t*, std::size_t) {}

struct SampleFormat
{
    std::string_view name;
    SampleKind kind;
    std::size_t size;
    void (*swap)(std::uint8_t*, std::size_t);
    void (*convert)(const std::uint8_t*, std::size_t, float*);
};

static constexpr std::array kFormats{
    SampleFormat{"UInt8", SampleKind::UInt8, 1, swapNothing, fromUInt8},
    SampleFormat{"UInt16", SampleKind::UInt16, 2, swapPairs, fromUInt16},
    SampleFormat{"UInt32", SampleKind::UInt32, 4, swapQuads, fromUInt32},
    SampleFormat{"Float32", SampleKind::Float32, 4, swapQuads, fromFloat32},
};

static const SampleFormat& formatOf(SampleKind kind)
{
    return kFormats[static_cast<std::size_t>(kind)];
}

std::optional<SampleKind> sampleKind(std::string_view name)
{
    for (const SampleFormat& format : kFormats)
        if (format.name == name)
            return format.kind;
    return std::nullopt;
}

std::size_t sampleSize(SampleKind kind)
{
    return formatOf(kind).size;
}

void swapSamples(SampleKind kind, std::uint8_t* bytes, std::size_t count)
{
    formatOf(kind).swap(bytes, count);
}

void convertSamples(SampleKind kind, const std::uint8_t* bytes, std::size_t count, float* out)
{
    formatOf(kind).convert(bytes, count, out);
}

} // namespace zre
