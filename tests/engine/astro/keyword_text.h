#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "engine/astro/astrometric_metadata.h"

namespace zrtest {

inline constexpr int kWidth = 1000;
inline constexpr int kHeight = 800;

/// "CRVAL1=83.6 CTYPE1='RA---TAN'" as keywords.
inline std::vector<acl::FITSKeyword> keywordsOf(const std::string& text)
{
    std::vector<acl::FITSKeyword> keywords;
    std::istringstream in(text);
    for (std::string field; in >> field;) {
        const std::size_t equals = field.find('=');
        keywords.push_back({field.substr(0, equals), field.substr(equals + 1), ""});
    }
    return keywords;
}

inline acl::AstrometricMetadata solutionOf(const std::string& text,
                                           const std::vector<acl::Property>& properties = {})
{
    return acl::AstrometricMetadata::Build(properties, keywordsOf(text), kWidth, kHeight);
}

/// A plain gnomonic solution at (83.6, -5.4) without its linear part.
inline const std::string kGnomonic = "CTYPE1='RA---TAN' CTYPE2='DEC--TAN' CRVAL1=83.6 CRVAL2=-5.4 "
                                     "CRPIX1=480.25 CRPIX2=410.75 ";

/// The unmirrored picture as it is counted from the bottom: negative determinant.
inline const std::string kCd = "CD1_1=-0.01 CD1_2=0.002 CD2_1=0.002 CD2_2=0.01 ";

} // namespace zrtest
