#pragma once

#include "engine/astro/projection.h"

namespace acl {

/// The rotation that puts `reference`'s sky point at its native point. All fields of `reference`
/// must be finite; throws acl::Error when no position of the pole fits them (FITS WCS Paper II,
/// section 2.4).
SphericalRotation rotationFor(const ProjectionReference& reference);

} // namespace acl
