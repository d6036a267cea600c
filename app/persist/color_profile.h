#pragma once

#include <QString>

#include "engine/params/params.h"

/// The colour-depth profile: the settings of the colour rows of one image, kept as a small text
/// file to be used on another.
namespace zrcol {

/// Writes the five colour-depth settings of `params`, numbers with nine significant digits. A file
/// that stood there is replaced only by a whole new one. Errors: false with "Cannot write: " and
/// the path in `error` (may be null).
bool save(const QString& path, const zre::ZRParams& params, QString* error);

/// Reads those of the five settings that the file holds; everything else in `params` stays, and all
/// of it when the load fails. No range is checked. Errors: false with a message in `error` (may be
/// null) for a file that cannot be opened, is no profile, or holds none of the settings.
bool load(const QString& path, zre::ZRParams& params, QString* error);

} // namespace zrcol
