#pragma once

#include "Platform/Scene/SCNGeometry.h"
#include "Render/FrameView.h"
#include "Render/GLObjects.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace trelmix {

/// One mesh on the graphics processor: its vertices, array after array interleaved, and its triangles.
struct MeshBuffers {
    /// What one call draws. More than one only where 32-bit indices are missing and 16-bit ones do not
    /// suffice.
    struct Piece {
        std::size_t firstVertex = 0;
        std::size_t firstIndexByte = 0;
        GLsizei indexCount = 0;
        GLenum indexType = GL_UNSIGNED_SHORT;
    };
    GLBuffer vertices;
    GLBuffer indices;
    std::vector<Piece> pieces;
    bool hasNormals = false;
    bool hasTangents = false;
    GLsizei stride = 0;
    /// Relative to the mesh's own origin.
    BoundingSphere sphere;
    int uses = 0;
};

/// The meshes of one context's buffers. One lives while a drawn node uses it.
class MeshStore {
public:
    MeshStore(std::shared_ptr<GLGraveyard> graveyard, bool has32BitIndices);

    /// Counts one use. Whoever uses it keeps the mesh alive. Null when the mesh has no triangle that can be
    /// drawn.
    MeshBuffers* retain(const std::shared_ptr<const SCNMesh>& mesh);
    /// Takes one use back. The buffers stay until `dropUnused`.
    void release(const SCNMesh& mesh);
    void dropUnused();
    std::size_t uploadedBytes() const { return _uploadedBytes; }

private:
    using Indices = std::vector<std::uint32_t>;
    void upload(MeshBuffers& buffers, const SCNMesh& mesh, const Indices& triangles);
    /// Vertices by their numbers in the mesh, in the order in which they go into the buffer.
    void uploadVertices(MeshBuffers& buffers, const SCNMesh& mesh, const std::vector<std::uint32_t>* order);
    void uploadPieces(MeshBuffers& buffers, const SCNMesh& mesh, const Indices& triangles);

    std::shared_ptr<GLGraveyard> _graveyard;
    bool _has32BitIndices;
    std::size_t _uploadedBytes = 0;
    std::map<const SCNMesh*, std::unique_ptr<MeshBuffers>> _meshes;
    std::vector<const SCNMesh*> _released;
};

} // namespace trelmix
