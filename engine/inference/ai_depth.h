#pragma once

#include <string>

#include "engine/image/image.h"

namespace zre {

/// Estimates the depth of a landscape-like image by a learned model that sees the whole of it at
/// one size.
///
/// One at a time: the calls share a session and are not reentrant. Messages may go to null.
struct AiDepth
{
    /// The model file to use; empty for `zr_dmap.onnx` beside the program.
    static void setModelPath(const std::string& path);
    static std::string modelPath();
    /// Releases the model; the next run opens it again.
    static void reset();
    /// Whether the runtime can be loaded and the model file exists; else `why` it cannot run. Opens
    /// no session.
    static bool available(std::string* why);
    /// Whether the model file exists; does not touch the runtime.
    static bool modelPresent();

    /// Gives `out` one channel of `outWidth` x `outHeight`: 0 farthest to 1 nearest over the whole
    /// image, 0.5 everywhere where the model sees no difference. False with a message, and `out` as
    /// it was.
    static bool compute(const Image& source, int outWidth, int outHeight, Image& out,
                        std::string* err);
};

} // namespace zre
