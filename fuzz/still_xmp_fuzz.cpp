// The injectors of stills: any bytes are taken without harm, and a file that takes the packet keeps
// all of its own bytes around it.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/export/still_xmp.h"

static void check(const vr180::Bytes& file, const std::optional<vr180::Bytes>& out,
                  std::size_t headBytes)
{
    if (!out)
        return;
    const std::string packet = vr180::stillXmp(64, 32);
    const bool grew = out->size() == file.size() + headBytes + packet.size();
    if (!grew)
        std::abort();
    const auto changed = std::mismatch(file.begin(), file.end(), out->begin()).first;
    const auto kept = static_cast<std::ptrdiff_t>(file.end() - changed);
    if (!std::equal(changed, file.end(), out->end() - kept) ||
        std::search(out->begin(), out->end(), packet.begin(), packet.end(),
                    [](auto a, auto b) { return a == static_cast<std::uint8_t>(b); }) == out->end())
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const vr180::Bytes bytes(data, data + size);
    check(bytes, vr180::withXmpPng(bytes, 64, 32), 34);
    check(bytes, vr180::withXmpJpeg(bytes, 64, 32), 33);
    return 0;
}
