#pragma once

#include <array>

#include "engine/astro/projection.h"

namespace acl {

/// Image pixels to projection plane in degrees: X = a[0] x + a[1] y + a[2], Y = a[3] x + a[4] y +
/// a[5].
class LinearWorldTransformation
{
public:
    /// Throws "Invalid call to LinearTransformation::Inverse(): Singular matrix" when there is no
    /// inverse.
    explicit LinearWorldTransformation(const std::array<double, 6>& imageToPlane);

    /// From the four linear coefficients, row by row, and the image point that lies at the plane's
    /// origin. That point maps to exactly (0, 0). Throws as above.
    LinearWorldTransformation(const std::array<double, 4>& linear, Point reference);

    Point toPlane(Point image) const;
    Point toImage(Point plane) const;
    const std::array<double, 6>& matrix() const { return forward; }
    /// The image point that lies at the plane's origin.
    Point reference() const { return {inverse[2], inverse[5]}; }
    double determinant() const { return forward[0] * forward[4] - forward[1] * forward[3]; }

private:
    void invert(Point reference);

    std::array<double, 6> forward{};
    std::array<double, 6> inverse{};
};

} // namespace acl
