#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/astro/keyword.h"

namespace acl {

/// The text of a FITS value: quotes off, doubled quotes single, blanks around it gone.
std::string fitsText(std::string_view value);

/// The number that a FITS value spells, with `1.0D-3` and a leading plus allowed; none when
/// anything else stands there or the number is not finite.
std::optional<double> fitsNumber(std::string_view value);

/// A real number with 17 significant digits, which read back to the same bits.
std::string fitsReal(double value);

/// A quoted FITS string, padded to the eight characters that the FITS standard asks for.
std::string fitsQuoted(std::string_view text);

/// Looks keywords up by name; of a repeated name the first counts, and an empty value counts as
/// absent.
class KeywordLookup
{
public:
    explicit KeywordLookup(const std::vector<FITSKeyword>& keywords)
        : list(keywords)
    {
    }

    std::optional<std::string> text(std::string_view name) const;
    /// Throws acl::Error when the keyword is there and is no finite number.
    std::optional<double> number(std::string_view name) const;

private:
    const std::vector<FITSKeyword>& list;
};

} // namespace acl
