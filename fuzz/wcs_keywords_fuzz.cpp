// The keyword and property reader on header texts: any bytes are refused or give a solution whose
// positions lie on the sky, and which its own keywords carry to the last bit.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/xisf_header.h"

static void require(bool condition)
{
    if (!condition)
        std::abort();
}

static acl::AstrometricMetadata build(const acl::XISFHeader& header)
{
    return acl::AstrometricMetadata::Build(header.properties, header.keywords, 1000, 800);
}

static void checkPoint(const acl::AstrometricMetadata& solution,
                       const acl::AstrometricMetadata& again, double x, double y)
{
    double ra = 0.0, dec = 0.0, ra2 = 0.0, dec2 = 0.0;
    const bool maps = solution.imageToCelestial(x, y, ra, dec);
    require(again.imageToCelestial(x, y, ra2, dec2) == maps && ra == ra2 && dec == dec2);
    if (!maps)
        return;
    require(ra >= 0.0 && ra < 360.0 && std::fabs(dec) <= 90.0);
    double xSky = 0.0;
    double ySky = 0.0;
    if (solution.celestialToImage(ra, dec, xSky, ySky))
        require(std::isfinite(xSky) && std::isfinite(ySky));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto attachment = [&](std::uint64_t position, std::uint64_t length) {
        std::vector<std::uint8_t> bytes(length);
        for (std::uint64_t i = 0; i < length; ++i)
            bytes[i] = data[(position % size + i) % size];
        return bytes;
    };
    try {
        const auto solution = build(acl::parseXisfHeader(text, attachment));
        if (!solution.isValid())
            return 0;
        acl::XISFHeader written;
        solution.UpdateWCSKeywords(written.keywords);
        const auto again = build(written);
        require(again.isValid());
        for (const double x : {0.0, 500.0, 1000.0, -1e9})
            for (const double y : {0.0, 400.0, 800.0})
                checkPoint(solution, again, x, y);
        solution.searchRadius();
    } catch (const std::exception&) {
        // Refused: the image has no solution.
    }
    return 0;
}
