#include "Platform/Scene/SCNGeometry.h"

#include <algorithm>

namespace trelmix {

std::size_t SCNMesh::indexCount() const {
    return std::visit([](const auto& list) { return list.size(); }, indices);
}

std::uint32_t SCNMesh::index(std::size_t i) const {
    return std::visit([i](const auto& list) { return static_cast<std::uint32_t>(list[i]); }, indices);
}

SCNMeshGeometry::SCNMeshGeometry(std::shared_ptr<const SCNMesh> mesh) : _mesh(std::move(mesh)) {
    if (!_mesh || _mesh->vertexCount() == 0) {
        return;
    }
    const auto& v = _mesh->vertices;
    _bounds = {v[0], v[1], v[0], v[1]};
    for (std::size_t i = 0; i + 2 < v.size(); i += 3) {
        _bounds.minX = std::min(_bounds.minX, v[i]);
        _bounds.maxX = std::max(_bounds.maxX, v[i]);
        _bounds.minY = std::min(_bounds.minY, v[i + 1]);
        _bounds.maxY = std::max(_bounds.maxY, v[i + 1]);
    }
}

} // namespace trelmix
