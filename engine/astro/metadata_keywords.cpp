#include <algorithm>
#include <array>
#include <string_view>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/fits_text.h"

namespace acl {

/// Keywords that tell of a solution in any of its spellings.
static constexpr std::array<std::string_view, 40> kSolutionKeywords{
    "CTYPE1", "CTYPE2",  "CUNIT1",   "CUNIT2",   "CRVAL1",  "CRVAL2",  "CRPIX1",   "CRPIX2",
    "CD1_1",  "CD1_2",   "CD2_1",    "CD2_2",    "PC1_1",   "PC1_2",   "PC2_1",    "PC2_2",
    "CDELT1", "CDELT2",  "CROTA1",   "CROTA2",   "PV1_0",   "PV1_1",   "PV1_2",    "PV1_3",
    "PV1_4",  "PV1_5",   "PV2_1",    "LONPOLE",  "LATPOLE", "RADESYS", "EQUINOX",  "RA",
    "DEC",    "OBJCTRA", "OBJCTDEC", "ROWORDER", "A_ORDER", "B_ORDER", "AP_ORDER", "BP_ORDER"};

static bool tellsOfSolution(const FITSKeyword& keyword)
{
    return std::find(kSolutionKeywords.begin(), kSolutionKeywords.end(), keyword.name) !=
           kSolutionKeywords.end();
}

/// Whether the reference point lies elsewhere on the native sphere than the projection's own. Left
/// out otherwise, because some programs take any PV keyword for a distortion.
static bool movesNativeReference(const Projection& projection)
{
    const ProjectionReference& used = projection.reference();
    const auto standard =
        ProjectionFactory::CreateByIdentifier(projection.identifier(), used.ra, used.dec);
    return used.nativeLongitude != standard->reference().nativeLongitude ||
           used.nativeLatitude != standard->reference().nativeLatitude;
}

void AstrometricMetadata::UpdateWCSKeywords(std::vector<FITSKeyword>& keywords) const
{
    keywords.erase(std::remove_if(keywords.begin(), keywords.end(), tellsOfSolution),
                   keywords.end());
    if (!isValid())
        return;
    const auto text = [&](const char* name, const std::string& value, const char* comment) {
        keywords.push_back({name, fitsQuoted(value), comment});
    };
    const auto real = [&](const char* name, double value, const char* comment) {
        keywords.push_back({name, fitsReal(value), comment});
    };
    const ProjectionReference& sky = projection->reference();
    const Point pixel = transformation->reference();
    const std::array<double, 6>& matrix = transformation->matrix();
    text("CTYPE1", std::string("RA---") + projection->code(), "Right ascension");
    text("CTYPE2", std::string("DEC--") + projection->code(), "Declination");
    text("CUNIT1", "deg", "Unit of the first axis");
    text("CUNIT2", "deg", "Unit of the second axis");
    real("CRVAL1", sky.ra, "Right ascension at the reference pixel");
    real("CRVAL2", sky.dec, "Declination at the reference pixel");
    real("CRPIX1", pixel.x + 0.5, "Reference pixel, axis 1");
    real("CRPIX2", pixel.y + 0.5, "Reference pixel, axis 2");
    real("CD1_1", matrix[0], "Degrees per pixel");
    real("CD1_2", matrix[1], "Degrees per pixel");
    real("CD2_1", matrix[3], "Degrees per pixel");
    real("CD2_2", matrix[4], "Degrees per pixel");
    if (movesNativeReference(*projection)) {
        real("PV1_1", sky.nativeLongitude, "Native longitude of the reference point");
        real("PV1_2", sky.nativeLatitude, "Native latitude of the reference point");
    }
    real("LONPOLE", sky.lonPole, "Native longitude of the celestial pole");
    real("LATPOLE", sky.latPole, "Native latitude of the celestial pole");
    text("RADESYS", "ICRS", "Celestial reference system");
    text("ROWORDER", "TOP-DOWN", "The first row is the top of the picture");
    double ra = 0.0;
    double dec = 0.0;
    if (imageToCelestial(imageWidth / 2.0, imageHeight / 2.0, ra, dec)) {
        real("RA", ra, "Right ascension of the centre");
        real("DEC", dec, "Declination of the centre");
    }
}

} // namespace acl
