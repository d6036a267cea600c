#pragma once

#include <vector>

#include <QMetaType>
#include <QString>

#include "app/session/keyed.h"
#include "engine/params/params.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// How the parameters say that stars are found; what has no parameter keeps its default.
StarDetectParams starDetectParams(const ZRParams& params);

} // namespace zre

Q_DECLARE_METATYPE(zre::StarDetectParams) // it may travel through queued signals

/// The part of a detection's cache key that stands for the erasures.
QString erasureCacheKey(const std::vector<zre::StarErasure>& erasures);
/// Adds every field of a detection to a cache key.
void addDetection(CacheKey& key, const zre::StarDetectParams& detect);
