#include "Platform/Scene/DrawItemBuilder.h"

#include "Platform/Scene/SCNNode.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

bool isFinite(Vector3d v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

std::array<float, 4> premultiplied(const UIColor& color) {
    const UIColor c = color.limited();
    return {static_cast<float>(c.red * c.alpha), static_cast<float>(c.green * c.alpha),
            static_cast<float>(c.blue * c.alpha), static_cast<float>(c.alpha)};
}

bool paintPlane(DrawItem& item, const SCNNode& node, const SCNPlane& plane, const SCNMaterial& material) {
    if (const auto* image = std::get_if<std::shared_ptr<const UIImage>>(&material.diffuse)) {
        item.kind = DrawKind::image;
        item.image = *image;
        item.usesLevels = material.diffuseUsesLevels;
        item.color = premultiplied(material.multiply);
        if (!item.image || item.color[3] <= 0) {
            return false;
        }
    } else if (const auto* color = std::get_if<UIColor>(&material.diffuse)) {
        if (plane.cornerRadius() <= 0) {
            return false; // no node shows a plain rectangle; a clear one only takes hits
        }
        item.kind = DrawKind::disc;
        item.color = premultiplied(*color);
        if (item.color[3] <= 0) {
            return false;
        }
    } else {
        return false;
    }
    item.corners = planeCorners(node, plane);
    return std::all_of(item.corners.begin(), item.corners.end(), isFinite);
}

bool paintMesh(DrawItem& item, const SCNNode& node, const SCNMeshGeometry& geometry,
               const SCNMaterial& material) {
    item.mesh = geometry.mesh();
    if (!item.mesh || item.mesh->indexCount() == 0) {
        return false;
    }
    // Meshes are only ever moved, never turned or scaled.
    item.meshPosition = node.presentedPosition() + item.mesh->origin;
    if (material.program) {
        item.kind = DrawKind::program;
        item.program = material.program;
        item.bindings = material.bindings;
    } else if (const auto* color = std::get_if<UIColor>(&material.diffuse)) {
        item.kind = DrawKind::fill;
        item.color = premultiplied(*color);
        if (item.color[3] <= 0) {
            return false;
        }
    } else {
        return false;
    }
    return isFinite(item.meshPosition);
}

} // namespace

std::array<Vector3d, 4> planeCorners(const SCNNode& node, const SCNPlane& plane) {
    if (const auto& edges = plane.sceneEdges()) {
        const double z = node.presentedPosition().z;
        return {{{edges->west, edges->north, z},
                 {edges->east, edges->north, z},
                 {edges->west, edges->south, z},
                 {edges->east, edges->south, z}}};
    }
    const Matrix4d transform = node.presentedTransform();
    const double x = plane.width() * 0.5;
    const double y = plane.height() * 0.5;
    return {{transform.transformPoint({-x, y, 0}), transform.transformPoint({x, y, 0}),
             transform.transformPoint({-x, -y, 0}), transform.transformPoint({x, -y, 0})}};
}

std::shared_ptr<const DrawItem> makeDrawItem(const SCNNode& node) {
    const SCNGeometry* geometry = node.geometry().get();
    if (!geometry || node.opacity() <= 0) {
        return nullptr;
    }
    const auto material = geometry->firstMaterial();
    if (!material) {
        return nullptr;
    }
    auto item = std::make_shared<DrawItem>();
    item->opacity = static_cast<float>(node.opacity());
    item->renderingOrder = node.renderingOrder();
    item->sequence = node.drawSequence();
    bool shows = false;
    if (const auto* plane = dynamic_cast<const SCNPlane*>(geometry)) {
        shows = paintPlane(*item, node, *plane, *material);
    } else if (const auto* mesh = dynamic_cast<const SCNMeshGeometry*>(geometry)) {
        shows = paintMesh(*item, node, *mesh, *material);
    }
    return shows ? item : nullptr;
}

} // namespace trelmix
