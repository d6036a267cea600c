#include <algorithm>
#include <functional>
#include <memory>

#include "engine/codec/block_codec.h"
#include "engine/codec/fail.h"
#include "engine/codec/xisf_container.h"
#include "engine/xisf/image_tag.h"
#include "engine/xisf/read_wcs.h"
#include "engine/xisf/sample_convert.h"
#include "engine/xisf/xisf.h"

namespace zre {

namespace {

/// Yields the next bytes of the samples in their stored byte order; false when there are no more.
using SampleBytes = std::function<bool(std::span<std::uint8_t>)>;

/// Samples are fetched and converted in portions that stay in the cache between the two.
constexpr std::size_t kPortionSamples = 65536;

/// Memory that is not filled before it is written: a block is as large as the picture.
struct Block
{
    explicit Block(std::uint64_t bytes)
        : data(std::make_unique_for_overwrite<std::uint8_t[]>(bytes))
        , size(bytes)
    {
    }
    std::span<std::uint8_t> span() const { return {data.get(), size}; }

    std::unique_ptr<std::uint8_t[]> data;
    std::uint64_t size;
};

/// Appends `count` converted samples to `out`. The vector grows by portions, so that the zeros that
/// it brings are still in the cache when the samples replace them.
bool appendSamples(const ImageTag& tag, const SampleBytes& next, std::size_t count,
                   std::vector<float>& out)
{
    const std::size_t size = sampleSize(tag.samples);
    std::vector<std::uint8_t> scratch;
    if (tag.samples != SampleKind::Float32)
        scratch.resize(std::min(count, kPortionSamples) * size);
    out.reserve(count);
    while (out.size() < count) {
        const std::size_t done = out.size();
        const std::size_t portion = std::min(kPortionSamples, count - done);
        out.resize(done + portion);
        float* const target = out.data() + done;
        std::uint8_t* const bytes =
            scratch.empty() ? reinterpret_cast<std::uint8_t*>(target) : scratch.data();
        if (!next({bytes, portion * size}))
            return false;
        if (tag.bigEndian)
            swapSamples(tag.samples, bytes, portion);
        convertSamples(tag.samples, bytes, portion, target);
    }
    return true;
}

/// The planes that are kept: one of fewer than three channels, else the first three.
Image emptyImage(const ImageTag& tag)
{
    Image image;
    image.width = tag.width;
    image.height = tag.height;
    image.channels = tag.channels < 3 ? 1 : 3;
    image.colorModel = image.channels == 3 ? 1 : 0;
    return image;
}

std::size_t sampleCount(const Image& image)
{
    return image.pixelCount() * static_cast<std::size_t>(image.channels);
}

bool loadRaw(XisfContainer& file, const ImageTag& tag, Image& image, std::string* error)
{
    const std::optional<std::uint64_t> needed = tag.neededBytes();
    if (!needed || tag.size < *needed)
        return fail(error, "XISF data block smaller than the image geometry.");
    const auto next = [&file](std::span<std::uint8_t> bytes) { return file.read(bytes); };
    if (!file.seek(tag.position) || !appendSamples(tag, next, sampleCount(image), image.data))
        return fail(error, "failed to read XISF pixel block.");
    return true;
}

/// Reads and decompresses the pixel block; what it holds is still shuffled if it was stored so.
bool readCompressed(XisfContainer& file, const ImageTag& tag, const BlockCompression& how,
                    std::unique_ptr<Block>& out, std::string* error)
{
    if (!canExpand(tag.size, how, error))
        return false;
    const Block stored(tag.size);
    if (!file.seek(tag.position) || !file.read(stored.span()))
        return fail(error, "failed to read XISF pixel block.");
    auto bytes = std::make_unique<Block>(how.uncompressedSize);
    if (!decompressInto(stored.span(), how, bytes->span(), error))
        return false;
    out = std::move(bytes);
    return true;
}

/// Yields the bytes of a block, unshuffling items of the samples' own size on the way.
SampleBytes bytesOf(const Block& block, std::uint64_t shuffledItem)
{
    return [&block, shuffledItem, at = std::uint64_t{0}](std::span<std::uint8_t> bytes) mutable {
        if (shuffledItem > 1)
            unshuffleItems(block.data.get(), block.size / shuffledItem, shuffledItem,
                           at / shuffledItem, bytes.size() / shuffledItem, bytes.data());
        else
            std::copy_n(block.data.get() + at, bytes.size(), bytes.data());
        at += bytes.size();
        return true;
    };
}

bool loadCompressed(XisfContainer& file, const ImageTag& tag, Image& image, std::string* error)
{
    const std::size_t itemOfSample = sampleSize(tag.samples);
    const std::optional<std::uint64_t> needed = tag.neededBytes();
    BlockCompression how;
    if (!parseBlockCompression(tag.compression, itemOfSample, how, error))
        return false;
    if (!needed || how.uncompressedSize < *needed)
        return fail(error, "XISF uncompressed size smaller than the image geometry.");
    std::unique_ptr<Block> block;
    if (!readCompressed(file, tag, how, block, error))
        return false;
    std::uint64_t shuffledItem = how.shuffled ? how.itemSize : 1;
    if (shuffledItem > 1 && shuffledItem != itemOfSample) {
        auto ordered = std::make_unique<Block>(block->size);
        unshuffle(block->span(), shuffledItem, ordered->data.get());
        block = std::move(ordered);
        shuffledItem = 1;
    }
    return appendSamples(tag, bytesOf(*block, shuffledItem), sampleCount(image), image.data);
}

bool openImage(const std::string& path, XisfContainer& file, ImageTag& tag, std::string* error)
{
    return file.open(path, error) && parseImageTag(file.header(), tag, error);
}

} // namespace

bool loadXisf(const std::string& path, Image& out, Wcs& wcs, std::string* error)
{
    XisfContainer file;
    ImageTag tag;
    if (!openImage(path, file, tag, error))
        return false;
    if (!file.holds(tag.position, tag.size))
        return fail(error, "failed to read XISF pixel block.");
    Image image = emptyImage(tag);
    const bool loaded = tag.compression.empty() ? loadRaw(file, tag, image, error)
                                                : loadCompressed(file, tag, image, error);
    if (!loaded)
        return false;
    out = std::move(image);
    readWcs(path, out.width, out.height, wcs);
    return true;
}

bool readXisfInfo(const std::string& path, XisfInfo& out, std::string* error)
{
    XisfContainer file;
    ImageTag tag;
    if (!openImage(path, file, tag, error))
        return false;
    out = {tag.width, tag.height, tag.channels, tag.sampleFormat, tag.compression, tag.bigEndian};
    return true;
}

} // namespace zre
