#pragma once

#include "engine/image/image.h"
#include "engine/params/params.h"

namespace zre {

/// Paints the depths of the enabled colour rows onto the pixels near their colours, in order, and
/// smooths what was painted. Pixels that no row touches keep their depth bit for bit.
///
/// Shape:   `depth` and `lightness`, the guide of the smoothing, have one channel and the size of
///          `colors`, of which fewer than three channels drop the stage.
/// Progress: takes fractions of the whole depth build, 0.85 to 0.95.
void paintColorRows(const Image& colors, const Image& lightness, const ZRParams& p, Image& depth,
                    const Progress& progress, const StageText& stage);

} // namespace zre
