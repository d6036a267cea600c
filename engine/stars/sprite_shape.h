#pragma once

#include <algorithm>
#include <cstddef>

#include "engine/stars/star.h"

namespace zre {

/// Samples a pixel of the sprite; a record that states none holds one.
inline std::size_t spriteChannels(const Star& star)
{
    return static_cast<std::size_t>(std::max(star.channels, 1));
}

inline std::size_t spritePixels(const Star& star)
{
    return star.boxW < 1 || star.boxH < 1
               ? 0
               : static_cast<std::size_t>(star.boxW) * static_cast<std::size_t>(star.boxH);
}

/// True when the box has pixels and the sprite holds every sample of it. Records come from files
/// too, so that nothing vouches for their lengths.
inline bool hasWholeSprite(const Star& star)
{
    const std::size_t pixels = spritePixels(star);
    return pixels > 0 && star.sprite.size() / spriteChannels(star) >= pixels;
}

/// True when the coverage holds every pixel of the box; without it the sprite covers wholly.
inline bool hasWholeAlpha(const Star& star)
{
    return !star.alpha.empty() && star.alpha.size() >= spritePixels(star);
}

} // namespace zre
