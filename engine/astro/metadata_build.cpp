#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "engine/astro/astrometric_metadata.h"
#include "engine/astro/degrees.h"
#include "engine/astro/fits_text.h"

namespace acl {

using Vector2 = std::array<double, 2>;
using Matrix2 = std::array<double, 4>;

/// Finds astrometric properties by the name behind their prefix. Files of the standard's first
/// revision carry the longer prefix, newer ones the shorter.
class PropertyLookup
{
public:
    explicit PropertyLookup(const std::vector<Property>& properties)
        : list(properties)
    {
    }

    std::optional<std::string> text(std::string_view name) const
    {
        const Property* property = find(name);
        if (!property)
            return std::nullopt;
        if (const auto* value = std::get_if<std::string>(&property->value))
            return fitsText(*value);
        throw Error("Invalid WCS metadata: " + property->id + " is not a text");
    }

    template <std::size_t Size>
    std::optional<std::array<double, Size>> numbers(std::string_view name) const
    {
        const Property* property = find(name);
        if (!property)
            return std::nullopt;
        const auto* values = std::get_if<std::vector<double>>(&property->value);
        if (!values || values->size() != Size)
            throw Error("Invalid WCS metadata: " + property->id + " has another size");
        std::array<double, Size> out{};
        for (std::size_t i = 0; i < Size; ++i) {
            if (!std::isfinite((*values)[i]))
                throw Error("Invalid WCS metadata: " + property->id + " is not finite");
            out[i] = (*values)[i];
        }
        return out;
    }

private:
    const Property* find(std::string_view name) const
    {
        for (const char* prefix : {"PCL:AstrometricSolution:", "AstrometricSolution:"})
            for (const Property& property : list)
                if (property.id == std::string(prefix).append(name))
                    return &property;
        return nullptr;
    }

    const std::vector<Property>& list;
};

/// The projection code of CTYPE1 and CTYPE2; a distortion suffix ("-SIP") is passed over, because
/// only the linear solution is used. Empty when the axes are not right ascension and declination
/// of one projection.
static std::string projectionCode(const KeywordLookup& keywords)
{
    const std::string first = keywords.text("CTYPE1").value_or("");
    const std::string second = keywords.text("CTYPE2").value_or("");
    if (!first.starts_with("RA---") || !second.starts_with("DEC--"))
        return {};
    const std::string code = first.substr(5, 3);
    const bool wholeCode = first.size() == 8 || first[8] == '-';
    return wholeCode && second.substr(5) == first.substr(5) ? code : std::string();
}

/// Whether the PV keywords are a polynomial distortion, as some astrometric programs write them
/// beside a plain gnomonic code, and do not describe the native sphere.
static bool hasPolynomialDistortion(const KeywordLookup& keywords)
{
    return keywords.text("PV2_1") || keywords.text("PV1_5");
}

static void readNativeSphere(const PropertyLookup& properties, const KeywordLookup& keywords,
                             ProjectionReference& reference)
{
    const auto take = [](double& target, std::optional<double> value) {
        if (value)
            target = *value;
    };
    const bool usePv = !hasPolynomialDistortion(keywords);
    if (const auto native = properties.numbers<2>("ReferenceNativeCoordinates")) {
        reference.nativeLongitude = (*native)[0];
        reference.nativeLatitude = (*native)[1];
    } else if (usePv) {
        take(reference.nativeLongitude, keywords.number("PV1_1"));
        take(reference.nativeLatitude, keywords.number("PV1_2"));
    }
    if (const auto pole = properties.numbers<2>("CelestialPoleNativeCoordinates")) {
        reference.lonPole = (*pole)[0];
        reference.latPole = (*pole)[1];
        return;
    }
    take(reference.lonPole, keywords.number("LONPOLE"));
    take(reference.latPole, keywords.number("LATPOLE"));
    if (usePv) {
        take(reference.lonPole, keywords.number("PV1_3"));
        take(reference.latPole, keywords.number("PV1_4"));
    }
}

static std::shared_ptr<const Projection> readProjection(const PropertyLookup& properties,
                                                        const KeywordLookup& keywords)
{
    const std::string name = properties.text("ProjectionSystem").value_or(projectionCode(keywords));
    if (name.empty())
        return nullptr;
    std::optional<Vector2> sky = properties.numbers<2>("ReferenceCelestialCoordinates");
    if (!sky) {
        const auto ra = keywords.number("CRVAL1");
        if (!ra)
            throw Error("Invalid WCS metadata: Undefined CRVAL1 field");
        const auto dec = keywords.number("CRVAL2");
        if (!dec)
            throw Error("Invalid WCS metadata: Undefined CRVAL2 field");
        sky = Vector2{*ra, *dec};
    }
    ProjectionReference reference((*sky)[0], (*sky)[1]);
    readNativeSphere(properties, keywords, reference);
    return ProjectionFactory::Create(name, reference);
}

/// Four keywords of a matrix, row by row; none when all are absent, else with `standard` for the
/// absent ones.
static std::optional<Matrix2> matrixKeywords(const KeywordLookup& keywords, std::string_view prefix,
                                             const Matrix2& standard)
{
    constexpr std::array<const char*, 4> kIndices{"1_1", "1_2", "2_1", "2_2"};
    Matrix2 matrix = standard;
    bool any = false;
    for (std::size_t i = 0; i < matrix.size(); ++i)
        if (const auto value = keywords.number(std::string(prefix) + kIndices[i])) {
            matrix[i] = *value;
            any = true;
        }
    return any ? std::optional(matrix) : std::nullopt;
}

/// The linear part as CD coefficients: those themselves, or PC with CDELT, or CDELT with CROTA.
static std::optional<Matrix2> cdMatrix(const KeywordLookup& keywords)
{
    if (const auto cd = matrixKeywords(keywords, "CD", {}))
        return cd;
    const auto scale1 = keywords.number("CDELT1");
    const auto scale2 = keywords.number("CDELT2");
    if (const auto pc = matrixKeywords(keywords, "PC", {1.0, 0.0, 0.0, 1.0})) {
        const double s1 = scale1.value_or(1.0);
        const double s2 = scale2.value_or(1.0);
        return Matrix2{s1 * (*pc)[0], s1 * (*pc)[1], s2 * (*pc)[2], s2 * (*pc)[3]};
    }
    if (!scale1 || !scale2)
        return std::nullopt;
    const auto rotation2 = keywords.number("CROTA2");
    const double rotation = rotation2 ? *rotation2 : keywords.number("CROTA1").value_or(0.0);
    const double cosine = cosDeg(rotation);
    const double sine = sinDeg(rotation);
    return Matrix2{*scale1 * cosine, -*scale2 * sine, *scale1 * sine, *scale2 * cosine};
}

/// Whether the keywords count rows from the bottom of the picture. Without a ROWORDER the reading
/// is taken under which the picture is not mirrored.
static bool countsFromBottom(const KeywordLookup& keywords, const std::optional<Matrix2>& cd)
{
    const std::string order = keywords.text("ROWORDER").value_or("");
    if (order == "TOP-DOWN" || order == "BOTTOM-UP")
        return order == "BOTTOM-UP";
    return cd && (*cd)[0] * (*cd)[3] - (*cd)[1] * (*cd)[2] < 0.0;
}

/// Brings a reference coordinate to the nearest one that a CRPIX value can carry, so that a
/// solution survives being written as keywords to its last bit.
static double onKeywordGrid(double coordinate)
{
    return (coordinate + 0.5) - 0.5;
}

static std::shared_ptr<const LinearWorldTransformation>
readTransformation(const PropertyLookup& properties, const KeywordLookup& keywords, int height)
{
    std::optional<Matrix2> matrix = properties.numbers<4>("LinearTransformationMatrix");
    std::optional<Vector2> reference = properties.numbers<2>("ReferenceImageCoordinates");
    if (!matrix || !reference) {
        const std::optional<Matrix2> cd = cdMatrix(keywords);
        const bool fromBottom = countsFromBottom(keywords, cd);
        const double sign = fromBottom ? -1.0 : 1.0;
        if (!matrix && cd)
            matrix = Matrix2{(*cd)[0], sign * (*cd)[1], (*cd)[2], sign * (*cd)[3]};
        const auto p1 = keywords.number("CRPIX1");
        const auto p2 = keywords.number("CRPIX2");
        if (!reference && p1 && p2)
            reference = Vector2{*p1 - 0.5, fromBottom ? height + 0.5 - *p2 : *p2 - 0.5};
    }
    if (!matrix || !reference)
        return nullptr;
    const Point origin{onKeywordGrid((*reference)[0]), onKeywordGrid((*reference)[1])};
    return std::make_shared<const LinearWorldTransformation>(*matrix, origin);
}

AstrometricMetadata AstrometricMetadata::Build(const std::vector<Property>& properties,
                                               const std::vector<FITSKeyword>& keywords, int width,
                                               int height)
{
    const PropertyLookup propertyLookup(properties);
    const KeywordLookup keywordLookup(keywords);
    std::shared_ptr<const Projection> projection = readProjection(propertyLookup, keywordLookup);
    if (!projection)
        return {nullptr, nullptr, width, height};
    return {std::move(projection), readTransformation(propertyLookup, keywordLookup, height), width,
            height};
}

} // namespace acl
