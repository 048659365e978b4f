#pragma once

#include "Platform/Graphics/UIBezierPath.h"
#include "Platform/Scene/SCNGeometry.h"

namespace trelmix {

/// A flat filled path in the node's X/Y plane. A copy shares path and triangles and may take other materials.
class SCNShape final : public SCNMeshGeometry {
public:
    explicit SCNShape(std::shared_ptr<const UIBezierPath> path);
    const std::shared_ptr<const UIBezierPath>& path() const { return _path; }

private:
    std::shared_ptr<const UIBezierPath> _path;
};

} // namespace trelmix
