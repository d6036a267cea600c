#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace acl {

/// A FITS header keyword as it travels in image files: the value is FITS text, strings still in
/// their quotes.
struct FITSKeyword
{
    std::string name;
    std::string value;
    std::string comment;
};

/// An XISF property reduced to what astrometry needs: text, or numbers (a scalar is one; a matrix
/// stands row by row).
struct Property
{
    std::string id;
    std::variant<std::string, std::vector<double>> value;
};

} // namespace acl
