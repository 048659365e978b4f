#include "Platform/Scene/HitTest.h"

#include "Platform/Scene/DrawItemBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace trelmix {

namespace {

/// Scene units: closer hits count as one distance.
constexpr double kSameDistance = 1e-6;

Vector3d cross(Vector3d a, Vector3d b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

std::array<Vector3d, 4> shownCorners(SCNNode& node, const SCNPlane& plane) {
    const auto& item = node.drawItem();
    return item ? item->corners : planeCorners(node, plane);
}

struct Flat {
    double x;
    double y;
};

/// How many directions along the ray a plane's rectangle is hit, in lengths of the direction; nothing when it
/// is missed.
std::optional<double> hitPlane(const SceneRay& ray, const std::array<Vector3d, 4>& corners, bool isDisc) {
    const Vector3d across = corners[1] - corners[0];
    const Vector3d down = corners[2] - corners[0];
    const Vector3d normal = cross(across, down);
    const double slope = dot(normal, ray.direction);
    if (slope == 0) {
        return std::nullopt;
    }
    const double t = dot(normal, corners[0] - ray.origin) / slope;
    if (!(t > 0) || !std::isfinite(t)) {
        return std::nullopt;
    }
    const Vector3d p = ray.origin + ray.direction * t - corners[0];
    const double u = dot(p, across) / dot(across, across);
    const double v = dot(p, down) / dot(down, down);
    if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1)) {
        return std::nullopt;
    }
    if (isDisc && (u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5) > 0.25) {
        return std::nullopt;
    }
    return t;
}

bool isInside(Flat p, Flat a, Flat b, Flat c) {
    const double ab = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    const double bc = (c.x - b.x) * (p.y - b.y) - (c.y - b.y) * (p.x - b.x);
    const double ca = (a.x - c.x) * (p.y - c.y) - (a.y - c.y) * (p.x - c.x);
    return (ab >= 0 && bc >= 0 && ca >= 0) || (ab <= 0 && bc <= 0 && ca <= 0);
}

/// Where a vertex is drawn: lines push theirs sideways along the miter.
Flat drawnVertex(const SCNMesh& mesh, std::uint32_t vertex, double margin) {
    const std::size_t i = std::size_t{3} * vertex;
    Flat p{mesh.vertices[i], mesh.vertices[i + 1]};
    if (margin <= 0 || mesh.normals.size() <= i + 1 || mesh.tangents.size() <= i + 1) {
        return p;
    }
    const double length = std::hypot(mesh.normals[i], mesh.normals[i + 1]);
    const Flat miter{-mesh.tangents[i + 1], mesh.tangents[i]};
    const double cosine = (miter.x * mesh.normals[i] + miter.y * mesh.normals[i + 1]) / length;
    return {p.x + miter.x * margin / cosine, p.y + miter.y * margin / cosine};
}

bool isOnTriangles(const SCNMesh& mesh, Flat p, double margin) {
    for (std::size_t i = 0; i + 2 < mesh.indexCount(); i += 3) {
        if (isInside(p, drawnVertex(mesh, mesh.index(i), margin),
                     drawnVertex(mesh, mesh.index(i + 1), margin),
                     drawnVertex(mesh, mesh.index(i + 2), margin))) {
            return true;
        }
    }
    return false;
}

std::optional<double> hitMesh(const SceneRay& ray, const SCNNode& node, const SCNMeshGeometry& geometry,
                              bool boxesOnly) {
    if (!geometry.mesh() || ray.direction.z == 0) {
        return std::nullopt;
    }
    const Vector3d place = node.presentedPosition() + geometry.mesh()->origin;
    const double t = (place.z - ray.origin.z) / ray.direction.z;
    if (!(t > 0) || !std::isfinite(t)) {
        return std::nullopt;
    }
    const Vector3d hit = ray.origin + ray.direction * t - place;
    const double margin = node.hitMargin();
    const MeshBounds& box = geometry.bounds();
    if (hit.x < box.minX - margin || hit.x > box.maxX + margin || hit.y < box.minY - margin ||
        hit.y > box.maxY + margin) {
        // Joins reach farther than half a width, so what is drawn may stand out of the box.
        if (boxesOnly || margin <= 0) {
            return std::nullopt;
        }
    }
    if (boxesOnly || isOnTriangles(*geometry.mesh(), {hit.x, hit.y}, margin)) {
        return t;
    }
    return std::nullopt;
}

std::optional<double> hitNode(const SceneRay& ray, SCNNode& node, bool boxesOnly) {
    const SCNGeometry* geometry = node.geometry().get();
    if (const auto* plane = dynamic_cast<const SCNPlane*>(geometry)) {
        const bool isDisc = !boxesOnly && plane->cornerRadius() > 0;
        return hitPlane(ray, shownCorners(node, *plane), isDisc);
    }
    if (const auto* mesh = dynamic_cast<const SCNMeshGeometry*>(geometry)) {
        return hitMesh(ray, node, *mesh, boxesOnly);
    }
    return std::nullopt;
}

/// Corners around all of the node that can be hit; nothing for lines, whose width changes with the zoom.
std::optional<std::array<Vector3d, 4>> reachOf(SCNNode& node) {
    const SCNGeometry* geometry = node.geometry().get();
    if (const auto* plane = dynamic_cast<const SCNPlane*>(geometry)) {
        return shownCorners(node, *plane);
    }
    const auto* mesh = dynamic_cast<const SCNMeshGeometry*>(geometry);
    if (!mesh || !mesh->mesh() || !mesh->mesh()->tangents.empty()) {
        return std::nullopt;
    }
    const Vector3d place = node.presentedPosition() + mesh->mesh()->origin;
    const auto [minX, minY, maxX, maxY] = mesh->bounds();
    return {{place + Vector3d{minX, minY, 0}, place + Vector3d{maxX, minY, 0},
             place + Vector3d{minX, maxY, 0}, place + Vector3d{maxX, maxY, 0}}};
}

bool isAbove(const SCNHitTestResult& a, const SCNHitTestResult& b) {
    if (a.node->renderingOrder() != b.node->renderingOrder()) {
        return a.node->renderingOrder() > b.node->renderingOrder();
    }
    return a.node->drawSequence() > b.node->drawSequence();
}

/// "Closer than 1e-6" is no order that a sort may be given, so runs of equal distance are ordered afterwards.
void sortNearestFirst(std::vector<SCNHitTestResult>& hits) {
    std::stable_sort(hits.begin(), hits.end(),
                     [](const auto& a, const auto& b) { return a.distance < b.distance; });
    for (auto first = hits.begin(); first != hits.end();) {
        auto last = first + 1;
        while (last != hits.end() && last->distance - (last - 1)->distance < kSameDistance) {
            ++last;
        }
        std::stable_sort(first, last, isAbove);
        first = last;
    }
}

} // namespace

SceneRay sceneRayThrough(CGPoint point, CGSize viewSize, const DrawCamera& camera) {
    const Matrix4d rotation = Matrix4d::rotation(camera.eulerAngles);
    const double focal = viewSize.height * 0.5 / std::tan(camera.fieldOfView * 0.5);
    const Vector3d eye = camera.position + rotation.transformPoint(camera.pivot * -1.0);
    return {eye, rotation.transformPoint(
                     {point.x - viewSize.width * 0.5, viewSize.height * 0.5 - point.y, -focal})};
}

std::vector<SCNHitTestResult> hitTestScene(SCNScene& scene, const SceneRay& ray, bool boxesOnly) {
    std::vector<SCNHitTestResult> hits;
    const double unit = std::sqrt(dot(ray.direction, ray.direction));
    for (const std::size_t place : scene._spheres.placesAlong(ray)) {
        const auto& node = scene._children[place];
        if (node->isHidden() || !node->geometry()) {
            continue;
        }
        if (const auto t = hitNode(ray, *node, boxesOnly)) {
            hits.push_back({node, *t * unit});
        }
        if (!scene._spheres.knows(place)) {
            if (const auto reach = reachOf(*node)) {
                scene._spheres.enclose(place, *reach);
            }
        }
    }
    sortNearestFirst(hits);
    return hits;
}

} // namespace trelmix
