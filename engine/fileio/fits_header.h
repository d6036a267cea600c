#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "engine/astro/keyword.h"

namespace zre::fileio {

inline constexpr std::size_t kFitsRecordBytes = 2880;
inline constexpr int kMaxFitsAxes = 6; ///< what cfitsio's tile compression knows

/// How the tiles of a compressed picture are coded.
struct FitsTileCoding
{
    bool gzip = false;  ///< else Rice
    int riceBlock = 32; ///< samples
    int riceBytes = 4;  ///< of a sample
};

/// The unit of a FITS file that holds the picture, its header checked against the file's size.
struct FitsUnit
{
    std::vector<acl::FITSKeyword> cards; ///< those with a value
    bool primary = true;
    bool compressed = false;
    int bitpix = 0; ///< of the picture, also in a compressed table
    int axes = 0;
    std::array<std::int64_t, kMaxFitsAxes> side{};
    std::array<std::int64_t, kMaxFitsAxes> tile{}; ///< sides of a tile, when compressed
    FitsTileCoding coding;
    std::size_t begin = 0;     ///< of its header in the file
    std::size_t dataBegin = 0; ///< and of its data
    std::size_t end = 0;       ///< behind the last byte of its data, not padded

    std::span<const std::int64_t> sides() const
    {
        return std::span(side).first(static_cast<std::size_t>(axes));
    }
    int channels() const { return axes >= 3 && side[2] == 3 ? 3 : 1; }
};

/// Finds the first unit with a picture of two axes or more.
///
/// Done here because cfitsio divides by, multiplies and allocates what the header says while it
/// opens a unit. What is found holds: every size is positive, tiles lie within the picture, the
/// data lie within the file, a compressed picture is no larger than deflate could make of them, and
/// its codec is Rice or gzip with parameters of the standard (the decoders of the rare other codecs
/// trust sizes inside their streams).
/// False with a message.
bool findPicture(std::span<const std::uint8_t> file, FitsUnit& unit, std::string* error);

/// A header of whole records for the table of a compressed unit, with only what decoding it takes,
/// as `findPicture` read it: nothing is left that another reader could read otherwise.
std::vector<std::uint8_t> plainTableHeader(const FitsUnit& unit);

} // namespace zre::fileio
