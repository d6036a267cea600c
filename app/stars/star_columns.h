#pragma once

#include <array>

namespace startable {

enum class Column
{
    Index,
    X,
    Y,
    Peak,
    Size,
    Depth,
    Distance,
    Ra,
    Dec
};

/// One column of the table.
struct ColumnInfo
{
    Column column;
    const char* title;
    const char* word; ///< what a filter calls it
    const char* help;
    const char* widest; ///< a text as wide as any of it
};

/// In the order of `Column`.
inline constexpr std::array kColumns{
    ColumnInfo{Column::Index, "Star", "star", "The star's place in the list, counted from 0.",
               "00000 ^"},
    ColumnInfo{Column::X, "X", "x", "Column of the star's middle, in pixels.", "00000.00"},
    ColumnInfo{Column::Y, "Y", "y", "Row of the star's middle, in pixels.", "00000.00"},
    ColumnInfo{Column::Peak, "Peak", "peak", "The highest value of its light, from 0 to 1.",
               "0.0000 ^"},
    ColumnInfo{Column::Size, "Size", "size",
               "Width and height of its sprite, in pixels. Sorts and filters by the longer side.",
               "000 x 000"},
    ColumnInfo{Column::Depth, "Depth", "depth",
               "Where it stands between 0, far, and 1, near. A hidden star is not drawn.",
               "Depth ^"},
    ColumnInfo{Column::Distance, "Distance", "distance",
               "How far away it is, in parsecs, where that is known.", "00000.0 pc"},
    ColumnInfo{Column::Ra, "RA", "ra",
               "Right ascension, where the image is solved. Filters take degrees.", "00:00:00.00"},
    ColumnInfo{Column::Dec, "Dec", "dec",
               "Declination, where the image is solved. Filters take degrees.", "+00:00:00.0"},
};

constexpr int columnNumber(Column column)
{
    return static_cast<int>(column);
}

} // namespace startable
