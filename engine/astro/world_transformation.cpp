#include "engine/astro/world_transformation.h"

#include <algorithm>
#include <cmath>

namespace acl {

LinearWorldTransformation::LinearWorldTransformation(const std::array<double, 6>& imageToPlane)
    : forward(imageToPlane)
{
    const auto& a = forward;
    const double det = determinant();
    invert({(a[1] * a[5] - a[2] * a[4]) / det, (a[2] * a[3] - a[0] * a[5]) / det});
}

LinearWorldTransformation::LinearWorldTransformation(const std::array<double, 4>& linear,
                                                     Point reference)
    : forward{linear[0], linear[1], -(linear[0] * reference.x + linear[1] * reference.y),
              linear[2], linear[3], -(linear[2] * reference.x + linear[3] * reference.y)}
{
    invert(reference);
}

void LinearWorldTransformation::invert(Point reference)
{
    const double det = determinant();
    inverse = {forward[4] / det,  -forward[1] / det, reference.x,
               -forward[3] / det, forward[0] / det,  reference.y};
    const auto finite = [](double value) { return std::isfinite(value); };
    if (!std::isnormal(det) || !std::all_of(forward.begin(), forward.end(), finite) ||
        !std::all_of(inverse.begin(), inverse.end(), finite))
        throw Error("Invalid call to LinearTransformation::Inverse(): Singular matrix");
}

Point LinearWorldTransformation::toPlane(Point image) const
{
    return {forward[0] * image.x + forward[1] * image.y + forward[2],
            forward[3] * image.x + forward[4] * image.y + forward[5]};
}

Point LinearWorldTransformation::toImage(Point plane) const
{
    return {inverse[0] * plane.x + inverse[1] * plane.y + inverse[2],
            inverse[3] * plane.x + inverse[4] * plane.y + inverse[5]};
}

} // namespace acl
