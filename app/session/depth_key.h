#pragma once

#include <QString>

#include "app/session/session.h"

/// The key of the depth up to the cues, or with `includeAnchor` up to the anchor: it differs
/// whenever that depth can differ. `base` says what decides the working image.
QString depthKey(const Session& session, const QString& base, bool includeAnchor);
