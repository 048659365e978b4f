#pragma once

#include "Platform/Scene/DrawList.h"

namespace trelmix {

class SCNNode;

/// What a node looks like as presented now; empty when it shows nothing (no geometry, clear, a place that is
/// not finite).
std::shared_ptr<const DrawItem> makeDrawItem(const SCNNode& node);

/// The scene positions of a plane's corners: top left, top right, bottom left, bottom right.
std::array<Vector3d, 4> planeCorners(const SCNNode& node, const SCNPlane& plane);

} // namespace trelmix
