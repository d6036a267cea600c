#include "engine/fileio/rice_stream.h"

#include <algorithm>
#include <bit>

namespace zre::fileio {

namespace {

/// Reads bits from the highest of each byte on; once they are short it stays so.
class BitReader
{
public:
    explicit BitReader(std::span<const std::uint8_t> stream)
        : bytes(stream)
    {
    }

    bool isShort() const { return position > bytes.size() * 8; }
    void skip(std::uint64_t count) { position += count; }
    std::uint32_t take(int count)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i, ++position)
            value = value << 1 | bitAtPosition();
        return value;
    }
    /// Passes over zeros and the one that ends them.
    void skipZeroRun()
    {
        while (position < bytes.size() * 8) {
            const auto rest = static_cast<std::uint8_t>(bytes[position / 8] << (position % 8));
            if (rest != 0) {
                position += static_cast<std::uint64_t>(std::countl_zero(rest)) + 1;
                return;
            }
            position += 8 - position % 8;
        }
        ++position;
    }

private:
    std::uint32_t bitAtPosition() const
    {
        return isShort() || position == bytes.size() * 8
                   ? 0
                   : bytes[position / 8] >> (7 - position % 8) & 1U;
    }

    std::span<const std::uint8_t> bytes;
    std::uint64_t position = 0;
};

} // namespace

bool isWholeRiceStream(std::span<const std::uint8_t> stream, std::uint64_t samples, int sampleBytes,
                       int blockSize)
{
    const int selectorBits = sampleBytes == 1 ? 3 : sampleBytes == 2 ? 4 : 5;
    const std::uint32_t rawSelector = sampleBytes == 1 ? 7 : sampleBytes == 2 ? 15 : 26;
    const auto sampleBits = static_cast<std::uint64_t>(sampleBytes) * 8;
    BitReader bits(stream);
    bits.skip(sampleBits); // the first sample as it is
    for (std::uint64_t done = 0; done < samples && !bits.isShort();) {
        const std::uint64_t block =
            std::min<std::uint64_t>(samples - done, static_cast<std::uint64_t>(blockSize));
        const std::uint32_t selector = bits.take(selectorBits);
        if (selector == rawSelector)
            bits.skip(block * sampleBits);
        else if (selector > rawSelector)
            return false;
        else if (selector != 0)
            for (std::uint64_t i = 0; i < block; ++i) {
                bits.skipZeroRun();
                bits.skip(selector - 1);
            }
        done += block;
    }
    return !bits.isShort();
}

} // namespace zre::fileio
