#pragma once

#include "Platform/Graphics/UIBezierPath.h"
#include "Platform/Scene/SCNGeometry.h"

#include <memory>

namespace trelmix {

/// The triangles that fill a path by the non-zero rule: every run of it counts as closed, and a place is
/// inside when the runs turn around it, in sum, other than zero times. No two triangles overlap, so that a
/// translucent fill blends once.
///
/// Computed in doubles relative to the middle of the path's bounds, which becomes the mesh's `origin`; the
/// path's y is the mesh's y. Runs may cross themselves and each other, repeat points and lie on one line.
/// Empty when nothing is enclosed, and for outlines with so many crossings that it would take more than some
/// seconds (ten thousand corners may have five thousand of them). Any thread.
std::shared_ptr<const SCNMesh> tessellate(const UIBezierPath& path);

} // namespace trelmix
