#pragma once

#include "engine/image/image.h"

namespace zre {

/// Lays `map`, read by nearest neighbour, over `depth` in place: b(1 - amount) + result * amount
/// with the result of the blend mode. Where the map has no finite value the depth stays.
///
/// Units:   `amount` 0 to 1; nothing happens when it is not above 0 or not finite.
void blendMap(Image& depth, const Image& map, int mode, float amount);

} // namespace zre
