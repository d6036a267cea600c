#include "engine/fileio/fits_solution.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/fits_text.h"

namespace zre::fileio {

namespace {

constexpr const char* kRowOrder = "ROWORDER";

bool isRowOrder(const acl::FITSKeyword& keyword)
{
    return keyword.name == kRowOrder;
}

void setRowOrder(std::vector<acl::FITSKeyword>& keywords, bool topDown)
{
    std::erase_if(keywords, isRowOrder);
    keywords.push_back(
        {kRowOrder, topDown ? "'TOP-DOWN'" : "'BOTTOM-UP'", "order of the rows in this file"});
}

/// Replaces the number in the keyword called `name` by what `change` makes of it.
template <class Change>
void changeNumber(std::vector<acl::FITSKeyword>& keywords, std::string_view name, Change change)
{
    for (acl::FITSKeyword& keyword : keywords)
        if (keyword.name == name)
            if (const std::optional<double> value = acl::fitsNumber(keyword.value))
                keyword.value = acl::fitsReal(change(*value));
}

} // namespace

bool rowsRunDown(const std::vector<acl::FITSKeyword>& keywords)
{
    return acl::KeywordLookup(keywords).text(kRowOrder) == "TOP-DOWN";
}

void readSolution(std::vector<acl::FITSKeyword> keywords, int width, int height, Wcs& wcs)
{
    // The standard's own order is bottom-up; the keyword's absence must not be left to a guess.
    setRowOrder(keywords, rowsRunDown(keywords));
    try {
        acl::makeWcs(acl::AstrometricMetadata::Build({}, keywords, width, height), wcs);
    } catch (const std::exception&) {
        return; // a picture never fails for its solution
    }
}

std::vector<acl::FITSKeyword> bottomUpKeywords(const Wcs& wcs, int height)
{
    std::vector<acl::FITSKeyword> keywords;
    if (!wcs.valid || !wcs.solution)
        return keywords;
    wcs.solution->UpdateWCSKeywords(keywords);
    if (rowsRunDown(keywords)) {
        // Row p of the picture's top-down numbering is row H + 1 - p from the bottom.
        const double mirrored = height + 1.0;
        changeNumber(keywords, "CRPIX2", [&](double p) { return mirrored - p; });
        for (const char* name : {"CD1_2", "CD2_2"})
            changeNumber(keywords, name, [](double v) { return -v; });
    }
    setRowOrder(keywords, false);
    return keywords;
}

} // namespace zre::fileio
