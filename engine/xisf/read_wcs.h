#pragma once

#include <string>

#include "engine/astro/wcs.h"

namespace zre {

/// Reads the astrometric solution of the first image of an XISF file of that size. Whatever fails,
/// `wcs` stays as it was and nothing is thrown: pixels do not depend on it.
void readWcs(const std::string& path, int width, int height, Wcs& wcs);

} // namespace zre
