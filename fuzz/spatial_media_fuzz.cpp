// The injectors of videos: any bytes are taken without harm, and what is inserted is all
// that changes in length.

#include <cstdint>
#include <cstdlib>

#include "app/export/spatial_moov.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const vr180::Bytes bytes(data, data + size);
    const auto check = [&](const std::optional<vr180::Bytes>& out, std::size_t least,
                           std::size_t most) {
        if (out && (out->size() < size + least || out->size() > size + most))
            std::abort();
    };
    check(vr180::withSpatialMedia(bytes), 101, 1500);
    check(vr180::withAppleSpatial(bytes, {}), 89, 89);
    if (const std::optional<vr180::Bytes> once = vr180::withAppleSpatial(bytes, {}))
        vr180::withSpatialMedia(*once);
    return 0;
}
