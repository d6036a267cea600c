#pragma once

#include <optional>

#include "app/export/mp4_boxes.h"

namespace vr180 {

/// What an Apple spatial video is declared as.
struct AppleSpatial
{
    double hfovDegrees = 90.0; ///< horizontal field of view
    double baselineMm = 63.0;  ///< between the eyes
    bool sideBySide = true;    ///< both eyes are packed into one frame
};

/// A `moov` box with the boxes of a side-by-side half sphere in its video track. Nothing for a box
/// that is damaged, holds no video or carries spatial boxes already.
std::optional<Bytes> withSpatialMedia(const Bytes& moov);

/// The same with Apple's boxes.
std::optional<Bytes> withAppleSpatial(const Bytes& moov, const AppleSpatial& spatial);

} // namespace vr180
