#pragma once

#include <string>

namespace zre {

/// Stores the message where there is somebody to read it; always false, to return at once.
inline bool fail(std::string* error, const std::string& message)
{
    if (error)
        *error = message;
    return false;
}

} // namespace zre
