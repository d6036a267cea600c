#pragma once

#include <string>

namespace zre {

/// Whether a script is of the dialect for flights through space, which no flyby compiler reads: the
/// first line that begins with `path_start`, blanks and comments aside, says "mode=3d".
bool isFlight3DScript(const std::string& text);

} // namespace zre
