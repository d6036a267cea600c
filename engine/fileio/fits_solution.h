#pragma once

#include <vector>

#include "engine/astro/keyword.h"
#include "engine/astro/wcs.h"

namespace zre::fileio {

/// True when the header says that the first stored row is the picture's top.
bool rowsRunDown(const std::vector<acl::FITSKeyword>& keywords);

/// Builds the solution of a picture of the given size from a header, for rows as they are shown.
/// `wcs` changes only with a usable solution.
void readSolution(std::vector<acl::FITSKeyword> keywords, int width, int height, Wcs& wcs);

/// The keywords of the solution for `height` rows stored bottom first, as the FITS standard has
/// them; empty without one.
std::vector<acl::FITSKeyword> bottomUpKeywords(const Wcs& wcs, int height);

} // namespace zre::fileio
