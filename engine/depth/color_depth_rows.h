#pragma once

#include <string>
#include <vector>

namespace zre {

/// A colour that paints a depth onto the pixels near it.
struct ColorDepthRow
{
    bool enabled = false;
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
    float tolerance = 0.0f; ///< colour distance at which the influence ends
    float depth = 0.5f;
};

/// Reads rows "enabled,r,g,b,tolerance,depth" joined by ";". A piece that does not give all six
/// fields is dropped.
void parseColorDepthRows(const std::string& text, std::vector<ColorDepthRow>& rows);

/// The text of `rows` that `parseColorDepthRows` reads, with four decimals.
std::string colorDepthRowsText(const std::vector<ColorDepthRow>& rows);

} // namespace zre
