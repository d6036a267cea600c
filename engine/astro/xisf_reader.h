#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "engine/astro/xisf_header.h"

namespace acl {

/// Reads the FITS keywords and the astrometric properties of the first image of an XISF file.
class XISFReader
{
public:
    /// Reads all there is and closes the file. Throws acl::Error, or what number conversion throws,
    /// when the file is not XISF or its header cannot be understood; a `path` is UTF-8.
    explicit XISFReader(const std::string& path);

    const std::vector<FITSKeyword>& keywords() const { return header.keywords; }
    const std::vector<Property>& properties() const { return header.properties; }

private:
    XISFHeader header;
};

} // namespace acl
