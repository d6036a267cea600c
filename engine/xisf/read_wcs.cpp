#include "engine/xisf/read_wcs.h"

#include <exception>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/xisf_reader.h"

namespace zre {

void readWcs(const std::string& path, int width, int height, Wcs& wcs)
{
    try {
        const acl::XISFReader reader(path);
        acl::makeWcs(
            acl::AstrometricMetadata::Build(reader.properties(), reader.keywords(), width, height),
            wcs);
    } catch (const std::exception&) {
        // A bad astrometric block leaves the image without a solution.
    }
}

} // namespace zre
