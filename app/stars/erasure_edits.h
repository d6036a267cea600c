#pragma once

#include <array>
#include <vector>

#include <QPointF>
#include <QRect>

#include "engine/params/star_erasure.h"

namespace startable {

/// What an erasure does with the light that it covers.
struct EraseMode
{
    const char* name;
    const char* meaning;
};

/// In the order of `zre::StarErasure::mode`.
inline constexpr std::array kEraseModes{
    EraseMode{"Area removed", "The light is gone from the frame."},
    EraseMode{"Area moved to background", "The light stays in place as flat background and stops "
                                          "being a separate object in 3D."},
    EraseMode{"Area blended into glow", "For a companion on a bright star's glow: the sprite "
                                        "follows the star's radial model inside the disc."},
};

/// One edit of the list, as the user knows it in the history.
inline constexpr const char* kEraseLabel = "erase companion";
inline constexpr const char* kChangeModeLabel = "change erasure mode";
inline constexpr const char* kDeleteLabel = "delete erasure";
inline constexpr const char* kClearLabel = "clear erasures";

using Erasures = std::vector<zre::StarErasure>;

/// The tool that erases.
struct Eraser
{
    static constexpr double kMinRadius = 0.5;
    static constexpr double kMaxRadius = 500.0;
    static constexpr int kMaxFeatherPercent = 200;

    double radius = 4.0;     ///< image pixels
    int featherPercent = 50; ///< of the radius
    int mode = 0;

    double feather() const { return radius * featherPercent / 100.0; }
    zre::StarErasure at(QPointF place) const;
    /// The radius after turning the wheel by `notches`, within its limits, to a tenth of a pixel.
    double turned(double notches) const;
};

/// The erasure whose disc lies under `place`, the one with the nearest centre where several do; -1
/// for none. A disc smaller than `reach` counts as one of that radius.
int erasureAt(const Erasures& erasures, QPointF place, double reach);

/// Whether an erasure, its soft edge included, touches a box of image pixels.
bool touches(const zre::StarErasure& erasure, const QRect& box);

} // namespace startable
