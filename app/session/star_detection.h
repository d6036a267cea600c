#pragma once

#include <vector>

#include <QString>

#include "engine/params/params.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// How the parameters say that stars are found; what has no parameter keeps its default.
StarDetectParams starDetectParams(const ZRParams& params);

} // namespace zre

/// The part of a detection's cache key that stands for the erasures.
QString erasureCacheKey(const std::vector<zre::StarErasure>& erasures);
