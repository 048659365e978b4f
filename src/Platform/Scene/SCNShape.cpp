#include "Platform/Scene/SCNShape.h"

#include "Platform/Scene/Tessellator.h"

namespace trelmix {

SCNShape::SCNShape(std::shared_ptr<const UIBezierPath> path)
    : SCNMeshGeometry(path ? tessellate(*path) : nullptr), _path(std::move(path)) {}

} // namespace trelmix
