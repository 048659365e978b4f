#include "Render/MeshStore.h"

#include <limits>
#include <unordered_map>

namespace trelmix {

namespace {

constexpr std::size_t kReach16 = 65536;

/// The triangles whose three vertices exist.
std::vector<std::uint32_t> soundTriangles(const SCNMesh& mesh) {
    const std::size_t vertexCount = mesh.vertexCount();
    const std::size_t count = mesh.indexCount() / 3 * 3;
    std::vector<std::uint32_t> triangles;
    triangles.reserve(count);
    for (std::size_t i = 0; i < count; i += 3) {
        const std::uint32_t corners[] = {mesh.index(i), mesh.index(i + 1), mesh.index(i + 2)};
        if (corners[0] < vertexCount && corners[1] < vertexCount && corners[2] < vertexCount) {
            triangles.insert(triangles.end(), std::begin(corners), std::end(corners));
        }
    }
    return triangles;
}

template <class Index>
std::vector<Index> narrowedIndices(const std::vector<std::uint32_t>& wide) {
    std::vector<Index> narrow(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        narrow[i] = static_cast<Index>(wide[i]);
    }
    return narrow;
}

template <class Index>
std::size_t uploadIndices(const std::vector<Index>& indices) {
    const std::size_t bytes = indices.size() * sizeof(Index);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), indices.data(), GL_STATIC_DRAW);
    return bytes;
}

} // namespace

MeshStore::MeshStore(std::shared_ptr<GLGraveyard> graveyard, bool has32BitIndices)
    : _graveyard(std::move(graveyard)), _has32BitIndices(has32BitIndices) {}

MeshBuffers* MeshStore::retain(const std::shared_ptr<const SCNMesh>& mesh) {
    auto& buffers = _meshes[mesh.get()];
    if (!buffers) {
        const Indices triangles = soundTriangles(*mesh);
        if (triangles.empty()) {
            _meshes.erase(mesh.get());
            return nullptr;
        }
        buffers = std::make_unique<MeshBuffers>();
        upload(*buffers, *mesh, triangles);
    }
    ++buffers->uses;
    return buffers.get();
}

void MeshStore::release(const SCNMesh& mesh) {
    if (--_meshes.find(&mesh)->second->uses == 0) {
        _released.push_back(&mesh);
    }
}

void MeshStore::dropUnused() {
    for (const SCNMesh* mesh : _released) {
        const auto found = _meshes.find(mesh);
        if (found != _meshes.end() && found->second->uses == 0) {
            _meshes.erase(found);
        }
    }
    _released.clear();
}

void MeshStore::upload(MeshBuffers& buffers, const SCNMesh& mesh, const Indices& triangles) {
    buffers.hasNormals = mesh.normals.size() == mesh.vertices.size();
    buffers.hasTangents = mesh.tangents.size() == mesh.vertices.size();
    const int arrays = 1 + (buffers.hasNormals ? 1 : 0) + (buffers.hasTangents ? 1 : 0);
    buffers.stride = static_cast<GLsizei>(arrays * 3 * static_cast<int>(sizeof(float)));
    buffers.vertices = GLBuffer::make(_graveyard);
    buffers.indices = GLBuffer::make(_graveyard);
    glBindBuffer(GL_ARRAY_BUFFER, buffers.vertices.name());
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers.indices.name());
    buffers.sphere =
        BoundingSphere::around(reinterpret_cast<const float(*)[3]>(mesh.vertices.data()), mesh.vertexCount());
    const auto count = static_cast<GLsizei>(triangles.size());
    if (mesh.vertexCount() > kReach16 && !_has32BitIndices) {
        uploadPieces(buffers, mesh, triangles);
        return;
    }
    uploadVertices(buffers, mesh, nullptr);
    if (mesh.vertexCount() <= 256) {
        buffers.pieces = {{0, 0, count, GL_UNSIGNED_BYTE}};
        _uploadedBytes += uploadIndices(narrowedIndices<std::uint8_t>(triangles));
    } else if (mesh.vertexCount() <= kReach16) {
        buffers.pieces = {{0, 0, count, GL_UNSIGNED_SHORT}};
        _uploadedBytes += uploadIndices(narrowedIndices<std::uint16_t>(triangles));
    } else {
        buffers.pieces = {{0, 0, count, GL_UNSIGNED_INT}};
        _uploadedBytes += uploadIndices(triangles);
    }
}

void MeshStore::uploadVertices(MeshBuffers& buffers, const SCNMesh& mesh,
                               const std::vector<std::uint32_t>* order) {
    const std::size_t count = order ? order->size() : mesh.vertexCount();
    std::vector<float> interleaved;
    interleaved.reserve(count * static_cast<std::size_t>(buffers.stride) / sizeof(float));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = (order ? (*order)[i] : i) * 3;
        const auto append = [&](const std::vector<float>& array) {
            interleaved.insert(interleaved.end(), {array[at], array[at + 1], array[at + 2]});
        };
        append(mesh.vertices);
        if (buffers.hasNormals) {
            append(mesh.normals);
        }
        if (buffers.hasTangents) {
            append(mesh.tangents);
        }
    }
    const std::size_t bytes = interleaved.size() * sizeof(float);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), interleaved.data(), GL_STATIC_DRAW);
    _uploadedBytes += bytes;
}

void MeshStore::uploadPieces(MeshBuffers& buffers, const SCNMesh& mesh, const Indices& triangles) {
    std::vector<std::uint32_t> order;
    std::vector<std::uint16_t> indices;
    std::unordered_map<std::uint32_t, std::uint16_t> places; // of the current piece
    MeshBuffers::Piece piece;
    const auto finish = [&] {
        piece.indexCount =
            static_cast<GLsizei>(indices.size() - piece.firstIndexByte / sizeof(std::uint16_t));
        if (piece.indexCount > 0) {
            buffers.pieces.push_back(piece);
        }
        piece.firstVertex = order.size();
        piece.firstIndexByte = indices.size() * sizeof(std::uint16_t);
        places.clear();
    };
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        if (i % 3 == 0 && places.size() + 3 > kReach16) {
            finish();
        }
        const auto [place, isNew] =
            places.try_emplace(triangles[i], static_cast<std::uint16_t>(places.size()));
        if (isNew) {
            order.push_back(triangles[i]);
        }
        indices.push_back(place->second);
    }
    finish();
    uploadVertices(buffers, mesh, &order);
    _uploadedBytes += uploadIndices(indices);
}

} // namespace trelmix
