#pragma once

#include <functional>
#include <string>

#include "engine/image/image.h"

namespace zre {

/// Separates the stars from an image by a learned model that is run at the image's own scale.
///
/// One at a time: the calls share a session and are not reentrant. Messages may go to null.
struct StarlessAI
{
    static constexpr int kTile = 512; ///< pixels a side
    static constexpr int kOverlap = 64;

    /// Tiles done, and tiles in all.
    using TileProgress = std::function<void(int done, int total)>;

    /// The model file to use; empty for `zr_stls.onnx` beside the program.
    static void setModelPath(const std::string& path);
    static std::string modelPath();
    /// Releases the model; the next run opens it again.
    static void reset();
    /// Whether the runtime can be loaded and the model file exists; else `why` it cannot run. Opens
    /// no session.
    static bool available(std::string* why);

    /// Gives `out`, 3 channels of the size of `source`, clamped to 0 to 1. A source of fewer than
    /// 3 channels goes in three times. Tiles fade into each other across `overlap` pixels, so that
    /// memory does not grow with the image. False with a message, and `out` as it was.
    static bool run(const Image& source, Image& out, std::string* err, const TileProgress& progress,
                    int tile = kTile, int overlap = kOverlap);
};

} // namespace zre
