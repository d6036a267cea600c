#pragma once

#include <string>

#include "engine/astro/keyword.h"
#include "engine/astro/xisf_header.h"

namespace acl {

/// A `Property` element as it stands in a header; attributes that are missing are empty.
struct PropertyElement
{
    std::string id;
    std::string type;
    std::string value;
    std::string location;
    std::string byteOrder;
    std::string compression;
    std::string content;      ///< character data of the element or of its `Data` child
    std::string dataEncoding; ///< of the `Data` child
};

/// The element's value: text for a String, numbers for a vector or matrix of real type.
/// Throws acl::Error for a type that astrometry has no use for, a block of more than some kilobytes
/// or damaged data.
Property readProperty(const PropertyElement& element, const AttachmentReader& attachment);

} // namespace acl
