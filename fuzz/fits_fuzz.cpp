#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "engine/fileio/fits_file.h"

// cfitsio keeps a tile's buffer on some of its error paths.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libcfitsio";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zre::Image image;
    zre::Wcs wcs;
    zre::ImageFileInfo info;
    std::string error;
    const bool read = zre::decodeFits({data, size}, image, wcs, &info, &error);
    // A failure has a text and no picture; a picture is whole and within its range.
    if (read != image.usable() || read == !error.empty() || (wcs.valid && !read))
        std::abort();
    if (image.data.size() != image.pixelCount() * static_cast<std::size_t>(image.channels))
        std::abort();
    for (const float v : image.data)
        if (!(v >= 0.0f && v <= 1.0f))
            std::abort();
    return 0;
}
