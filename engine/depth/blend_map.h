#pragma once

#include "engine/image/image.h"

namespace zre {

/// Lays `map`, read by nearest neighbour, over `depth` in place: b(1 - amount) + result * amount
/// with the result of the blend mode. A pixel whose blend has no finite value keeps its depth.
///
/// Units:   `amount` 0 to 1; nothing happens when it is not above 0 or not finite.
void blendMap(Image& depth, const Image& map, int mode, float amount);

} // namespace zre
