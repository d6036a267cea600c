#pragma once

#include <array>

#include <QImage>

#include "engine/image/image.h"

/// Colours for depth on the screen, from far (dark violet) to near (pale yellow), by 8-bit level.
/// Their lightness rises evenly, so that equal steps of depth look alike and the order of depths
/// survives in grey.
const std::array<QRgb, 256>& depthColors();

/// A depth map in those colours; the levels are those of the grey picture.
QImage depthInColor(const zre::Image& depth);
