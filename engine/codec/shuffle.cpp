#include <algorithm>
#include <bit>
#include <cstring>

#include "engine/codec/block_codec.h"
#include "engine/image/multiversion.h"

namespace zre {

static_assert(std::endian::native == std::endian::little);

ZR_MULTIVERSION static void mergePairs(const std::uint8_t* __restrict low,
                                       const std::uint8_t* __restrict high, std::size_t count,
                                       std::uint8_t* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const auto item =
            static_cast<std::uint16_t>(low[i] | static_cast<std::uint32_t>(high[i]) << 8U);
        std::memcpy(out + 2 * i, &item, sizeof item);
    }
}

ZR_MULTIVERSION static void mergeQuads(const std::uint8_t* __restrict b0,
                                       const std::uint8_t* __restrict b1,
                                       const std::uint8_t* __restrict b2,
                                       const std::uint8_t* __restrict b3, std::size_t count,
                                       std::uint8_t* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t item = b0[i] | static_cast<std::uint32_t>(b1[i]) << 8U |
                                   static_cast<std::uint32_t>(b2[i]) << 16U |
                                   static_cast<std::uint32_t>(b3[i]) << 24U;
        std::memcpy(out + 4 * i, &item, sizeof item);
    }
}

void unshuffleItems(const std::uint8_t* in, std::uint64_t items, std::uint64_t itemSize,
                    std::uint64_t first, std::uint64_t count, std::uint8_t* out)
{
    const std::uint8_t* const start = in + first;
    if (itemSize == 2)
        return mergePairs(start, start + items, count, out);
    if (itemSize == 4)
        return mergeQuads(start, start + items, start + 2 * items, start + 3 * items, count, out);
    for (std::uint64_t j = 0; j < itemSize; ++j)
        for (std::uint64_t i = 0; i < count; ++i)
            out[i * itemSize + j] = start[j * items + i];
}

void unshuffle(std::span<const std::uint8_t> in, std::uint64_t itemSize, std::uint8_t* out)
{
    const std::uint64_t size = std::max<std::uint64_t>(itemSize, 1);
    const std::uint64_t items = in.size() / size;
    // An item larger than the block leaves no items at all: everything is rest.
    if (items > 0)
        unshuffleItems(in.data(), items, size, 0, items, out);
    std::copy(in.begin() + static_cast<std::ptrdiff_t>(items * size), in.end(), out + items * size);
}

} // namespace zre
