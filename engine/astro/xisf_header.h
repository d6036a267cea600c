#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/astro/keyword.h"

namespace acl {

/// What astrometry needs of the first image of an XISF header.
struct XISFHeader
{
    std::vector<FITSKeyword> keywords;
    std::vector<Property> properties;
};

/// Fetches `size` bytes at the absolute file offset `position`; throws when they are not there.
using AttachmentReader =
    std::function<std::vector<std::uint8_t>(std::uint64_t position, std::uint64_t size)>;

/// Reads the FITS keywords and the astrometric properties that are children of the first `Image`.
///
/// Properties of any other name, among them distortion splines, are passed over unread. Names may
/// carry a namespace prefix. Document type declarations, and with them entities of the file's own,
/// are refused. Throws acl::Error, or what number conversion throws, when the text is not
/// well-formed up to the end of that image or a wanted property cannot be read.
XISFHeader parseXisfHeader(std::string_view xml, const AttachmentReader& attachment);

} // namespace acl
