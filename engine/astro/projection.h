#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace acl {

/// A failure of the astrometric classes; its text is the whole message.
struct Error : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Degrees on a plane, on the native sphere or on the sky.
struct Point
{
    double x = 0.0;
    double y = 0.0;
};

/// The rotation between native and celestial spheres (FITS WCS Paper II, Calabretta & Greisen
/// 2002).
struct SphericalRotation
{
    double poleRa = 0.0; ///< celestial position of the native pole
    double poleDec = 90.0;
    double nativePoleLongitude = 180.0; ///< LONPOLE

    Point nativeToCelestial(Point native) const;
    Point celestialToNative(Point celestial) const;
};

/// What a projection is built from beside its kind; NaN means the default of the projection.
struct ProjectionReference
{
    double ra = 0.0;
    double dec = 0.0;
    double nativeLongitude; ///< phi0 (PV1_1)
    double nativeLatitude;  ///< theta0 (PV1_2)
    double lonPole;
    double latPole;

    ProjectionReference(double ra, double dec);
};

/// A map projection with its reference point. Plane and native coordinates are degrees.
class Projection
{
public:
    virtual ~Projection() = default;

    /// False when the point has no image: behind the plane, or beyond the projection's edge.
    bool celestialToPlane(Point celestial, Point& plane) const;
    bool planeToCelestial(Point plane, Point& celestial) const;

    virtual const char* identifier() const = 0; ///< for example "Gnomonic"
    virtual const char* code() const = 0;       ///< for example "TAN"
    const ProjectionReference& reference() const { return referencePoint; }
    const SphericalRotation& rotation() const { return sphericalRotation; }

protected:
    Projection(const ProjectionReference& reference, double theta0);
    virtual bool project(Point native, Point& plane) const = 0;
    virtual bool unproject(Point plane, Point& native) const = 0;

private:
    ProjectionReference referencePoint;
    SphericalRotation sphericalRotation;
};

/// Makes projections by identifier ("Gnomonic") or FITS code ("TAN").
struct ProjectionFactory
{
    /// Null for a name that is not known.
    static std::unique_ptr<Projection> CreateByIdentifier(const std::string& identifier, double ra,
                                                          double dec);
    static std::unique_ptr<Projection> Create(const std::string& identifierOrCode,
                                              const ProjectionReference& reference);
};

} // namespace acl
