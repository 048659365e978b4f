#include "Platform/Scene/SCNGeometry.h"

namespace trelmix {

std::size_t SCNMesh::indexCount() const {
    return std::visit([](const auto& list) { return list.size(); }, indices);
}

std::uint32_t SCNMesh::index(std::size_t i) const {
    return std::visit([i](const auto& list) { return static_cast<std::uint32_t>(list[i]); }, indices);
}

} // namespace trelmix
