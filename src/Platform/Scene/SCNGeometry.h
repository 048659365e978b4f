#pragma once

#include "Platform/Scene/SCNMaterial.h"
#include "Platform/Scene/SCNVector.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace trelmix {

/// Triangles in 32-bit floats relative to an origin in doubles, so that vertices keep their place far from
/// the scene's origin. Immutable once shared; any thread.
struct SCNMesh {
    /// Three floats a vertex; normals and tangents are empty or as many.
    std::vector<float> vertices;
    std::vector<float> normals;
    std::vector<float> tangents;
    /// 8-bit while they suffice, 32-bit beyond.
    std::variant<std::vector<std::uint8_t>, std::vector<std::uint32_t>> indices;
    /// Where (0, 0, 0) of the vertices lies in the node's own coordinates.
    Vector3d origin;

    std::size_t vertexCount() const { return vertices.size() / 3; }
    std::size_t indexCount() const;
    std::uint32_t index(std::size_t i) const;
};

/// The edges of a plane in scene coordinates. Planes that share an edge give the same doubles for it, so that
/// no seam opens between them whatever their nodes' positions round to.
struct SceneEdges {
    double west = 0;
    double east = 0;
    double south = 0;
    double north = 0;
};

/// What a node shows. Shared between nodes and draw lists; replaced as a whole rather than changed, except
/// that `setMaterials` belongs to the node that owns it, before it is shown or followed by
/// `SCNNode::setGeometry`.
class SCNGeometry {
public:
    virtual ~SCNGeometry() = default;
    const std::vector<std::shared_ptr<const SCNMaterial>>& materials() const { return _materials; }
    void setMaterials(std::vector<std::shared_ptr<const SCNMaterial>> materials) {
        _materials = std::move(materials);
    }
    std::shared_ptr<const SCNMaterial> firstMaterial() const {
        return _materials.empty() ? nullptr : _materials.front();
    }

private:
    std::vector<std::shared_ptr<const SCNMaterial>> _materials;
};

/// A rectangle centred on the node's origin in its X/Y plane; with a corner radius of half its side, a disc.
class SCNPlane final : public SCNGeometry {
public:
    SCNPlane(double width, double height) : _width(width), _height(height) {}
    double width() const { return _width; }
    double height() const { return _height; }
    double cornerRadius() const { return _cornerRadius; }
    void setCornerRadius(double radius) { _cornerRadius = radius; }
    const std::optional<SceneEdges>& sceneEdges() const { return _sceneEdges; }
    void setSceneEdges(SceneEdges edges) { _sceneEdges = edges; }

private:
    double _width;
    double _height;
    double _cornerRadius = 0;
    std::optional<SceneEdges> _sceneEdges;
};

/// The smallest upright rectangle around a mesh's vertices, relative to the mesh's origin.
struct MeshBounds {
    float minX = 0;
    float minY = 0;
    float maxX = -1;
    float maxY = -1;
};

/// A mesh of the application's or the tessellator's making; it lies in the plane z = 0 of its node.
class SCNMeshGeometry : public SCNGeometry {
public:
    explicit SCNMeshGeometry(std::shared_ptr<const SCNMesh> mesh);
    const std::shared_ptr<const SCNMesh>& mesh() const { return _mesh; }
    const MeshBounds& bounds() const { return _bounds; }

private:
    std::shared_ptr<const SCNMesh> _mesh;
    MeshBounds _bounds;
};

} // namespace trelmix
