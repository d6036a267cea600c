#include <charconv>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/wcs.h"

namespace zre {

/// `%.<decimals>f` whatever the locale.
static std::string fixed(double value, int decimals)
{
    char digits[400];
    const auto written =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
    return std::string(digits, written.ptr);
}

static std::string skyText(const char* label, double ra, double dec)
{
    return label + ("RA=" + fixed(ra, 5)) + " Dec=" + fixed(dec, 5) + "; ";
}

std::string wcsBuildSpike()
{
    constexpr int kWidth = 1000;
    constexpr int kHeight = 800;
    constexpr double kCentreRa = 83.82208;
    constexpr double kCentreDec = -5.39111;
    constexpr double kArcsecPerPixel = 3.6;
    Wcs wcs;
    makeSyntheticWcs(kCentreRa, kCentreDec, kArcsecPerPixel, 30.0, kWidth, kHeight, wcs);
    std::string report;
    const acl::AstrometricMetadata* solution = wcs.solution.get();
    if (solution && solution->projectionOf())
        report += std::string("proj=") + solution->projectionOf()->identifier() + " OK; ";
    if (solution && solution->transformationOf())
        report += "linear wt OK; ";
    report += std::string("astro built valid=") + (wcs.valid ? "1" : "0") + "; ";
    report += "resolution=" + fixed(wcs.resolutionArcsec, 4) + " as/px; ";
    double ra = 0.0;
    double dec = 0.0;
    bool mapped = wcs.centerCelestial(ra, dec);
    report += skyText("center->", ra, dec);
    mapped = wcs.imageToCelestial(0.0, 0.0, ra, dec) && mapped;
    report += skyText("corner(0,0)->", ra, dec);
    mapped = wcs.imageToCelestial(kWidth / 2.0, kHeight / 2.0, ra, dec) && mapped;
    report += skyText("img(cx,cy)->", ra, dec);
    double x = 0.0;
    double y = 0.0;
    mapped = wcs.celestialToImage(kCentreRa, kCentreDec, x, y) && mapped;
    report += "RA/Dec->img=(" + fixed(x, 2) + "," + fixed(y, 2) + "); ";
    return report + (wcs.valid && mapped ? "PASS" : "FAIL: solution not valid");
}

} // namespace zre
