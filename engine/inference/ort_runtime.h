#pragma once

#include <string>

#include "engine/inference/ort_api.h"

namespace zre {

namespace ortload {

/// The folder of the running program, without a closing slash; empty where the system does not
/// tell.
std::string exeDir();

/// Opens the runtime's library, beside the program before anywhere else: its handle, or null with a
/// message. It is never closed, because the library owns threads.
void* open(std::string* err);

} // namespace ortload

/// Brings up ONNX Runtime by the newest interface that both sides know. The first call decides for
/// the whole process; later ones repeat its answer. `err` may be null, here and below.
bool ensureApi(std::string* err);

/// Whether a call of the runtime failed: stores "ONNX: " and the reason, and releases `status`.
bool failed(ort::OrtStatus* status, std::string* err);

namespace ort {

/// The runtime's table; null until `ensureApi` was true.
const OrtApi* api();

/// Calls an entry of the table; only after `ensureApi` was true.
template <class Entry, class... Arguments>
auto call(Arguments... arguments)
{
    return reinterpret_cast<typename Entry::Function>(api()->slots[Entry::kNumber])(arguments...);
}

/// Stores the message unless there is nobody to read it; always false, to return at once.
inline bool fail(std::string* err, const std::string& message)
{
    if (err)
        *err = message;
    return false;
}

} // namespace ort
} // namespace zre
