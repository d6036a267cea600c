#pragma once

#include <QColor>

namespace splash {

/// The design canvas, in units.
inline constexpr int kWidth = 800;
inline constexpr int kHeight = 480;

inline constexpr QColor kGround(0x0a, 0x0a, 0x0c);
inline constexpr QColor kLeftLens(0xff, 0x4d, 0x57); ///< of red and cyan glasses
inline constexpr QColor kRightLens(0x29, 0xdf, 0xe8);

} // namespace splash
