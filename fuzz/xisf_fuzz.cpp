// The XISF reader on whole files: any bytes are refused or give an image that holds its pixels, and
// what was read is written and read again without change.

#include <cstdint>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "engine/xisf/xisf.h"

/// A file that lives in memory and has a path.
class MemoryFile
{
public:
    MemoryFile()
        : descriptor(memfd_create("xisf", MFD_CLOEXEC))
    {
        if (descriptor < 0)
            std::abort();
    }

    const std::string& with(std::span<const std::uint8_t> bytes)
    {
        if (ftruncate(descriptor, 0) != 0 ||
            pwrite(descriptor, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            std::abort();
        return path;
    }

private:
    int descriptor;
    std::string path = "/proc/self/fd/" + std::to_string(descriptor);
};

static bool load(const std::string& path, zre::Image& image, zre::Wcs& wcs)
{
    try {
        std::string error;
        zre::XisfInfo info;
        zre::readXisfInfo(path, info, &error);
        return zre::loadXisf(path, image, wcs, &error);
    } catch (const std::logic_error&) {
        return false; // a number that does not convert
    } catch (const std::bad_alloc&) {
        return false;
    }
}

static void require(bool condition)
{
    if (!condition)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static MemoryFile file;
    zre::Image image;
    zre::Wcs wcs;
    if (!load(file.with({data, size}), image, wcs))
        return 0;
    require(image.usable() &&
            image.data.size() == image.pixelCount() * static_cast<std::size_t>(image.channels));
    for (const float sample : image.data)
        require(sample >= 0.0F && sample <= 1.0F);
    std::vector<std::uint8_t> written;
    require(zre::writeXisf(image, written, &wcs));
    zre::Image again;
    zre::Wcs wcsAgain;
    require(load(file.with(written), again, wcsAgain));
    require(again.data == image.data && wcsAgain.valid == wcs.valid);
    return 0;
}
