#include "engine/flight/flight3d_path.h"

#include <string_view>

#include "engine/flight/script_text.h"

namespace zre {

/// Cuts the comment and the blanks at both ends off; whether anything is left.
static bool cleanLine(std::string_view& line)
{
    line = script::trimmed(line.substr(0, line.find('#')));
    return !line.empty();
}

bool isFlight3DScript(const std::string& text)
{
    for (std::string_view line : script::linesOf(text))
        if (cleanLine(line) && line.starts_with("path_start"))
            return line.find("mode=3d") != std::string_view::npos;
    return false;
}

} // namespace zre
