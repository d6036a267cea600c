#include <array>
#include <cmath>

#include "engine/astro/degrees.h"
#include "engine/astro/projection.h"

namespace acl {

namespace {

constexpr double D = kDegreesPerRadian;

/// Degrees by which a point may miss the edge of a projection and still count as on it (or, for the
/// horizon of the gnomonic plane, still count as behind it).
constexpr double kEdgeTolerance = 1e-9;

/// A projection about the native pole: a subclass gives the radius on the plane as a function of
/// the native latitude, and back.
class ZenithalProjection : public Projection
{
protected:
    explicit ZenithalProjection(const ProjectionReference& reference)
        : Projection(reference, 90.0)
    {
    }
    virtual bool radius(double theta, double& r) const = 0;
    virtual bool latitude(double r, double& theta) const = 0;

private:
    bool project(Point native, Point& plane) const final
    {
        double r = 0.0;
        if (!radius(native.y, r))
            return false;
        plane = {r * sinDeg(native.x), -r * cosDeg(native.x)};
        return true;
    }

    bool unproject(Point plane, Point& native) const final
    {
        double theta = 0.0;
        if (!latitude(std::hypot(plane.x, plane.y), theta))
            return false;
        native = {atan2Deg(plane.x, -plane.y), theta};
        return true;
    }
};

/// A projection about the native origin: the cylindrical ones and Hammer-Aitoff.
class EquatorialProjection : public Projection
{
protected:
    explicit EquatorialProjection(const ProjectionReference& reference)
        : Projection(reference, 0.0)
    {
    }
};

/// Gives a projection class the names that it declares.
template <typename Kind, typename Base>
class Named : public Base
{
public:
    explicit Named(const ProjectionReference& reference)
        : Base(reference)
    {
    }
    const char* identifier() const override { return Kind::kIdentifier; }
    const char* code() const override { return Kind::kCode; }
};

class GnomonicProjection final : public Named<GnomonicProjection, ZenithalProjection>
{
public:
    static constexpr const char* kIdentifier = "Gnomonic";
    static constexpr const char* kCode = "TAN";
    using Named::Named;

private:
    bool radius(double theta, double& r) const override
    {
        if (theta <= kEdgeTolerance)
            return false;
        r = D * cosDeg(theta) / sinDeg(theta);
        return true;
    }
    bool latitude(double r, double& theta) const override
    {
        theta = atan2Deg(D, r);
        return true;
    }
};

class StereographicProjection final : public Named<StereographicProjection, ZenithalProjection>
{
public:
    static constexpr const char* kIdentifier = "Stereographic";
    static constexpr const char* kCode = "STG";
    using Named::Named;

private:
    bool radius(double theta, double& r) const override
    {
        if (theta <= -90.0 + kEdgeTolerance)
            return false;
        r = 2.0 * D * std::tan((90.0 - theta) / (2.0 * D));
        return true;
    }
    bool latitude(double r, double& theta) const override
    {
        theta = 90.0 - 2.0 * D * std::atan(r / (2.0 * D));
        return true;
    }
};

class ZenithalEqualAreaProjection final
    : public Named<ZenithalEqualAreaProjection, ZenithalProjection>
{
public:
    static constexpr const char* kIdentifier = "ZenithalEqualArea";
    static constexpr const char* kCode = "ZEA";
    using Named::Named;

private:
    bool radius(double theta, double& r) const override
    {
        r = 2.0 * D * std::sin((90.0 - theta) / (2.0 * D));
        return true;
    }
    bool latitude(double r, double& theta) const override
    {
        if (r > 2.0 * D)
            return false;
        theta = 90.0 - 2.0 * D * std::asin(r / (2.0 * D));
        return true;
    }
};

class OrthographicProjection final : public Named<OrthographicProjection, ZenithalProjection>
{
public:
    static constexpr const char* kIdentifier = "Orthographic";
    static constexpr const char* kCode = "SIN";
    using Named::Named;

private:
    bool radius(double theta, double& r) const override
    {
        if (theta < -kEdgeTolerance)
            return false;
        r = D * cosDeg(theta);
        return true;
    }
    bool latitude(double r, double& theta) const override
    {
        if (r > D)
            return false;
        theta = D * std::acos(r / D);
        return true;
    }
};

class PlateCarreeProjection final : public Named<PlateCarreeProjection, EquatorialProjection>
{
public:
    static constexpr const char* kIdentifier = "PlateCarree";
    static constexpr const char* kCode = "CAR";
    using Named::Named;

private:
    bool project(Point native, Point& plane) const override
    {
        plane = native;
        return true;
    }
    bool unproject(Point plane, Point& native) const override
    {
        native = plane;
        return std::fabs(plane.y) <= 90.0 + kEdgeTolerance;
    }
};

class MercatorProjection final : public Named<MercatorProjection, EquatorialProjection>
{
public:
    static constexpr const char* kIdentifier = "Mercator";
    static constexpr const char* kCode = "MER";
    using Named::Named;

private:
    bool project(Point native, Point& plane) const override
    {
        if (std::fabs(native.y) >= 90.0 - kEdgeTolerance)
            return false;
        plane = {native.x, D * std::log(std::tan((90.0 + native.y) / (2.0 * D)))};
        return true;
    }
    bool unproject(Point plane, Point& native) const override
    {
        native = {plane.x, 2.0 * D * std::atan(std::exp(plane.y / D)) - 90.0};
        return true;
    }
};

class HammerAitoffProjection final : public Named<HammerAitoffProjection, EquatorialProjection>
{
public:
    static constexpr const char* kIdentifier = "HammerAitoff";
    static constexpr const char* kCode = "AIT";
    using Named::Named;

private:
    bool project(Point native, Point& plane) const override
    {
        const double cosLatitude = cosDeg(native.y);
        const double gamma = D * std::sqrt(2.0 / (1.0 + cosLatitude * cosDeg(native.x / 2.0)));
        plane = {2.0 * gamma * cosLatitude * sinDeg(native.x / 2.0), gamma * sinDeg(native.y)};
        return true;
    }
    bool unproject(Point plane, Point& native) const override
    {
        const double u = plane.x / (4.0 * D);
        const double v = plane.y / (2.0 * D);
        const double zSquared = 1.0 - u * u - v * v;
        if (zSquared < 0.5)
            return false;
        const double z = std::sqrt(zSquared);
        const double along = 2.0 * zSquared - 1.0;
        const double across = 2.0 * u * z;
        native = {2.0 * atan2Deg(across, along), atan2Deg(2.0 * v * z, std::hypot(across, along))};
        return true;
    }
};

struct ProjectionKind
{
    const char* identifier;
    const char* code;
    std::unique_ptr<Projection> (*make)(const ProjectionReference&);
};

template <typename Kind>
constexpr ProjectionKind kind()
{
    return {Kind::kIdentifier, Kind::kCode,
            [](const ProjectionReference& reference) -> std::unique_ptr<Projection> {
                return std::make_unique<Kind>(reference);
            }};
}

constexpr std::array kKinds{
    kind<GnomonicProjection>(),          kind<StereographicProjection>(),
    kind<ZenithalEqualAreaProjection>(), kind<OrthographicProjection>(),
    kind<PlateCarreeProjection>(),       kind<MercatorProjection>(),
    kind<HammerAitoffProjection>(),
};

} // namespace

std::unique_ptr<Projection> ProjectionFactory::Create(const std::string& identifierOrCode,
                                                      const ProjectionReference& reference)
{
    for (const ProjectionKind& entry : kKinds)
        if (identifierOrCode == entry.identifier || identifierOrCode == entry.code)
            return entry.make(reference);
    return nullptr;
}

std::unique_ptr<Projection> ProjectionFactory::CreateByIdentifier(const std::string& identifier,
                                                                  double ra, double dec)
{
    return Create(identifier, ProjectionReference(ra, dec));
}

} // namespace acl
