// Loading XISF files of three planes, beside what the same bytes cost at the least: reading the
// file into memory that is there already, and the codec alone into such memory. The files lie in
// the page cache.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <lz4.h>
#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include "bench/bench_support.h"
#include "engine/codec/block_codec.h"
#include "engine/xisf/xisf.h"

using Bytes = std::vector<std::uint8_t>;

/// A picture as a stack of exposures gives it: a smooth sky with noise in the low bits.
static const Bytes& samples()
{
    static const Bytes bytes = [] {
        const auto pixels =
            static_cast<std::size_t>(benchWidth()) * static_cast<std::size_t>(benchHeight());
        std::vector<float> picture(3 * pixels);
        std::minstd_rand random(3);
        for (std::size_t i = 0; i < picture.size(); ++i)
            picture[i] = 0.1F + 0.1F * static_cast<float>(i % pixels) / static_cast<float>(pixels) +
                         1e-3F * static_cast<float>(random() % 1024) / 1024.0F;
        const auto* first = reinterpret_cast<const std::uint8_t*>(picture.data());
        return Bytes(first, first + picture.size() * sizeof(float));
    }();
    return bytes;
}

static Bytes shuffled(const Bytes& bytes)
{
    Bytes out(bytes.size());
    const std::size_t items = bytes.size() / 4;
    for (std::size_t i = 0; i < items; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            out[j * items + i] = bytes[4 * i + j];
    return out;
}

static Bytes compressed(const std::string& codec, const Bytes& bytes)
{
    Bytes out(bytes.size() + bytes.size() / 16 + 1024);
    uLongf size = out.size();
    if (codec == "zlib")
        compress2(out.data(), &size, bytes.data(), bytes.size(), 1);
    else if (codec == "zstd")
        size = ZSTD_compress(out.data(), out.size(), bytes.data(), bytes.size(), 1);
    else
        size = static_cast<uLongf>(LZ4_compress_default(
            reinterpret_cast<const char*>(bytes.data()), reinterpret_cast<char*>(out.data()),
            static_cast<int>(bytes.size()), static_cast<int>(out.size())));
    out.resize(size);
    return out;
}

/// The block of the file of a codec ("" for raw); compressed ones are shuffled.
static const Bytes& block(const std::string& codec)
{
    static std::map<std::string, Bytes> blocks;
    const auto found = blocks.find(codec);
    if (found != blocks.end())
        return found->second;
    return blocks[codec] = codec.empty() ? samples() : compressed(codec, shuffled(samples()));
}

/// Writes a file for the time of one benchmark.
class XisfOnDisk
{
public:
    explicit XisfOnDisk(const std::string& codec)
        : file(std::filesystem::temp_directory_path() /
               ("xisf_bench_" + std::to_string(getpid()) + ".xisf"))
    {
        const Bytes& pixels = block(codec);
        std::string header = "<xisf><Image geometry=\"" + std::to_string(benchWidth()) + ":" +
                             std::to_string(benchHeight()) +
                             ":3\" sampleFormat=\"Float32\" location=\"attachment:1024:" +
                             std::to_string(pixels.size()) + "\"";
        if (!codec.empty())
            header += " compression=\"" + codec + "+sh:" + std::to_string(samples().size()) + "\"";
        header += "/></xisf>";
        header.resize(1024 - 16, ' ');
        const std::uint32_t preamble[2] = {1024 - 16, 0};
        std::ofstream out(file, std::ios::binary);
        out.write("XISF0100", 8);
        out.write(reinterpret_cast<const char*>(preamble), sizeof preamble);
        out << header;
        out.write(reinterpret_cast<const char*>(pixels.data()),
                  static_cast<std::streamsize>(pixels.size()));
    }
    ~XisfOnDisk() { std::filesystem::remove(file); }
    XisfOnDisk(const XisfOnDisk&) = delete;
    XisfOnDisk& operator=(const XisfOnDisk&) = delete;

    std::string path() const { return file.string(); }

private:
    std::filesystem::path file;
};

static void loadOurs(benchmark::State& state, const std::string& codec)
{
    const XisfOnDisk file(codec);
    for (auto _ : state) {
        zre::Image image;
        zre::Wcs wcs;
        std::string error;
        if (!zre::loadXisf(file.path(), image, wcs, &error))
            state.SkipWithError(error.c_str());
        benchmark::DoNotOptimize(image.data.data());
    }
    countPixels(state, benchWidth(), benchHeight());
}

static void xisfraw_ours(benchmark::State& state)
{
    loadOurs(state, "");
}
static void xisfzstd_ours(benchmark::State& state)
{
    loadOurs(state, "zstd");
}
static void xisfzlib_ours(benchmark::State& state)
{
    loadOurs(state, "zlib");
}
static void xisflz4_ours(benchmark::State& state)
{
    loadOurs(state, "lz4");
}

static void xisfraw_read(benchmark::State& state)
{
    const XisfOnDisk file("");
    Bytes memory(std::filesystem::file_size(file.path()), 1);
    for (auto _ : state) {
        std::FILE* in = std::fopen(file.path().c_str(), "rb");
        std::setvbuf(in, nullptr, _IONBF, 0);
        if (std::fread(memory.data(), 1, memory.size(), in) != memory.size())
            state.SkipWithError("short read");
        std::fclose(in);
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
}

static void decompressOnly(benchmark::State& state, const std::string& codec)
{
    const Bytes& stored = block(codec);
    Bytes memory(samples().size(), 1);
    zre::BlockCompression how;
    how.codec = codec;
    how.uncompressedSize = memory.size();
    for (auto _ : state) {
        std::string error;
        if (!zre::decompressInto(stored, how, memory, &error))
            state.SkipWithError(error.c_str());
        benchmark::ClobberMemory();
    }
    countPixels(state, benchWidth(), benchHeight());
}

static void xisfzstd_lib(benchmark::State& state)
{
    decompressOnly(state, "zstd");
}
static void xisfzlib_lib(benchmark::State& state)
{
    decompressOnly(state, "zlib");
}
static void xisflz4_lib(benchmark::State& state)
{
    decompressOnly(state, "lz4");
}

BENCHMARK(xisfraw_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(xisfraw_read)->Unit(benchmark::kMillisecond);
BENCHMARK(xisfzstd_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(xisfzstd_lib)->Unit(benchmark::kMillisecond);
BENCHMARK(xisfzlib_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(xisfzlib_lib)->Unit(benchmark::kMillisecond);
BENCHMARK(xisflz4_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(xisflz4_lib)->Unit(benchmark::kMillisecond);
