#pragma once

#include <cstdint>
#include <vector>

#include "engine/params/star_erasure.h"

/// The erasures around which stars have to be found anew: those of only one of the lists, and all
/// of the new list that give light to the base, which is put together from nothing.
std::vector<zre::StarErasure> changedErasures(const std::vector<zre::StarErasure>& before,
                                              const std::vector<zre::StarErasure>& now);

/// One byte a pixel: 1 in the square that radius and feather span about each erasure, one pixel
/// wider within the image: an erasure acts on a star whose box it only touches.
std::vector<std::uint8_t> erasureSearchMask(const std::vector<zre::StarErasure>& erasures,
                                            int width, int height);
