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

    Point toPlane(Point image) const;
    Point toImage(Point plane) const;
    const std::array<double, 6>& matrix() const { return forward; }
    double determinant() const { return forward[0] * forward[4] - forward[1] * forward[3]; }

private:
    std::array<double, 6> forward;
    std::array<double, 6> inverse;
};

} // namespace acl
