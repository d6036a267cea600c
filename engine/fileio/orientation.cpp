#include "engine/fileio/orientation.h"

#include <array>

namespace zre::fileio {

namespace {

/// Where the sample shown at (x, y) is stored: mirrored in the stored columns or rows, after
/// exchanging the axes where `transpose` is set.
struct Turn
{
    bool transpose;
    bool mirrorColumns;
    bool mirrorRows;
};

// TIFF 6.0, tag 274: by the corner in which row 0 and column 0 lie.
constexpr std::array<Turn, 9> kTurns{{
    {false, false, false}, // not a value of the tag
    {false, false, false},
    {false, true, false},
    {false, true, true},
    {false, false, true},
    {true, false, false},
    {true, false, true},
    {true, true, true},
    {true, true, false},
}};

} // namespace

void applyOrientation(Image& image, int orientation)
{
    if (!image.usable() || orientation < 2 || orientation > 8)
        return;
    const Turn& turn = kTurns[static_cast<std::size_t>(orientation)];
    const int columns = image.width;
    const int rows = image.height;
    Image upright(turn.transpose ? rows : columns, turn.transpose ? columns : rows,
                  image.colorModel);
    for (int c = 0; c < image.channels; ++c) {
        const float* in = image.plane(c);
        float* out = upright.plane(c);
        for (int y = 0; y < upright.height; ++y)
            for (int x = 0; x < upright.width; ++x) {
                const int column = turn.transpose ? y : x;
                const int row = turn.transpose ? x : y;
                const auto storedX =
                    static_cast<std::size_t>(turn.mirrorColumns ? columns - 1 - column : column);
                const auto storedY =
                    static_cast<std::size_t>(turn.mirrorRows ? rows - 1 - row : row);
                *out++ = in[storedY * static_cast<std::size_t>(columns) + storedX];
            }
    }
    image = std::move(upright);
}

} // namespace zre::fileio
