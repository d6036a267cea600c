#include "engine/astro/xisf_reader.h"

#include "engine/astro/projection.h"
#include "engine/codec/xisf_container.h"

namespace acl {

XISFReader::XISFReader(const std::string& path)
{
    zre::XisfContainer file;
    std::string failure;
    if (!file.open(path, &failure))
        throw Error(failure);
    header = parseXisfHeader(file.header(), [&file](std::uint64_t position, std::uint64_t size) {
        if (!file.holds(position, size))
            throw Error("Invalid XISF property: block beyond the end of the file");
        std::vector<std::uint8_t> bytes(size);
        if (!file.seek(position) || !file.read(bytes))
            throw Error("Invalid XISF property: unreadable block");
        return bytes;
    });
}

} // namespace acl
