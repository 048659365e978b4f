#include "Overlays/LineMesh.h"

#include <cmath>

namespace trelmix {

namespace {

/// Scene units. Nearer than this, a direction is rounding noise; it is less than a tenth of a millimetre.
constexpr float kSamePlace = 1e-3F;
/// Half widths. A turn of 175 degrees, the sharpest that survives the clean-up, has a miter of 23.
constexpr float kLongestMiter = 25.0F;

LineVector operator+(LineVector a, LineVector b) {
    return {a.x + b.x, a.y + b.y};
}

LineVector operator-(LineVector a) {
    return {-a.x, -a.y};
}

LineVector normalised(LineVector v) {
    const float length = std::hypot(v.x, v.y);
    return {v.x / length, v.y / length};
}

bool isFinite(LineVector v) {
    return std::isfinite(v.x) && std::isfinite(v.y);
}

/// Whether the miter of a join is one that the line may have: its length is 1 over the cosine of half the
/// turn, and the two directions add up to twice that cosine.
bool canBeMitered(LineVector before, LineVector after) {
    const LineVector sum = before + after;
    return std::hypot(sum.x, sum.y) * kLongestMiter >= 2.0F;
}

struct Builder {
    SCNMesh& mesh;
    std::vector<std::uint32_t>& indices;

    static void append(std::vector<float>& list, LineVector v) { list.insert(list.end(), {v.x, v.y, 0.0F}); }

    void pair(LineVector point, LineVector normal, LineVector tangent) const {
        append(mesh.vertices, point);
        append(mesh.vertices, point);
        append(mesh.normals, -normal);
        append(mesh.normals, normal);
        append(mesh.tangents, tangent);
        append(mesh.tangents, tangent);
    }

    /// Two triangles between the last two pairs.
    void band() const {
        const auto first = static_cast<std::uint32_t>(mesh.vertexCount()) - 4;
        for (const std::uint32_t corner : {1U, 0U, 2U, 1U, 2U, 3U}) {
            indices.push_back(first + corner);
        }
    }
};

} // namespace

LineVector LineMesh::Segment::direction() const {
    return normalised({P1.x - P0.x, P1.y - P0.y});
}

std::optional<LineMesh> LineMesh::between(std::span<const LineVector> points) {
    LineMesh mesh;
    mesh._points.reserve(points.size());
    for (const LineVector& point : points) {
        const bool isElsewhere = mesh._points.empty() ||
                                 std::abs(point.x - mesh._points.back().x) > kSamePlace ||
                                 std::abs(point.y - mesh._points.back().y) > kSamePlace;
        if (isFinite(point) && isElsewhere) {
            mesh._points.push_back(point);
        }
    }
    return mesh._points.size() >= 2 ? std::optional(std::move(mesh)) : std::nullopt;
}

std::shared_ptr<const SCNMesh> LineMesh::data(Vector3d origin) const {
    auto mesh = std::make_shared<SCNMesh>();
    mesh->origin = origin;
    for (auto* list : {&mesh->vertices, &mesh->normals, &mesh->tangents}) {
        list->reserve(_points.size() * 6);
    }
    std::vector<std::uint32_t> indices;
    indices.reserve(segmentCount() * 6);
    const Builder builder{*mesh, indices};

    builder.pair(_points[0], segment(0).normal(), segment(0).direction());
    for (std::size_t i = 0; i < segmentCount(); ++i) {
        const LineVector normal = segment(i).normal();
        const LineVector direction = segment(i).direction();
        const bool isLast = i + 1 == segmentCount();
        const LineVector next = isLast ? direction : segment(i + 1).direction();
        const bool isMitered = canBeMitered(direction, next);
        builder.pair(_points[i + 1], normal, isMitered ? normalised(direction + next) : direction);
        builder.band();
        if (!isMitered) {
            builder.pair(_points[i + 1], segment(i + 1).normal(), next);
        }
    }
    if (mesh->vertexCount() <= 256) {
        mesh->indices = std::vector<std::uint8_t>(indices.begin(), indices.end());
    } else {
        mesh->indices = std::move(indices);
    }
    return mesh;
}

} // namespace trelmix
