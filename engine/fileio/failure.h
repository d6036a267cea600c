#pragma once

#include <exception>
#include <new>
#include <string>
#include <utility>

namespace zre::fileio {

/// Puts `message` into `error` unless null; always false, so that a guard clause is one line.
inline bool fail(std::string* error, std::string message)
{
    if (error)
        *error = std::move(message);
    return false;
}

/// Runs `body` (returning bool) and turns what it throws into a message: sizes come out of files,
/// so too little memory is an ordinary failure here.
template <class Body>
bool guarded(std::string* error, Body&& body)
{
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return fail(error, "not enough memory for this image.");
    } catch (const std::exception& e) {
        return fail(error, e.what());
    }
}

} // namespace zre::fileio
