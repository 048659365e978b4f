#include "Render/FillPainter.h"

#include "Render/GLShader.h"

#include <cstddef>

namespace trelmix {

namespace {

constexpr std::size_t kReach16 = 65536;

constexpr const char* kVertexShader = R"(#version 100
attribute vec3 a_position;
attribute vec4 a_color;
uniform mat4 u_matrix;
varying vec4 v_color;
void main() {
    gl_Position = u_matrix * vec4(a_position, 1.0);
    v_color = a_color;
}
)";

constexpr const char* kFragmentShader = R"(#version 100
precision mediump float;
varying vec4 v_color;
void main() {
    gl_FragColor = v_color;
}
)";

std::array<float, 4> paintOf(const DrawItem& item) {
    std::array<float, 4> color{};
    for (std::size_t i = 0; i < 4; ++i) {
        color[i] = fraction(item.color[i]) * fraction(item.opacity);
    }
    return color;
}

} // namespace

FillPainter::FillPainter(std::shared_ptr<GLGraveyard> graveyard) : _graveyard(std::move(graveyard)) {}

std::string FillPainter::prepare(const std::shared_ptr<GLGraveyard>& graveyard) {
    if (_program.program) {
        return {};
    }
    const GLAttribute attributes[] = {{0, "a_position"}, {1, "a_color"}};
    auto linked = linkProgram(graveyard, kVertexShader, kFragmentShader, attributes);
    if (!linked) {
        return linked.reason();
    }
    _program.program = std::move(*linked);
    _program.matrix = glGetUniformLocation(_program.program.name(), "u_matrix");
    return {};
}

std::size_t FillPainter::write(std::span<Placement> placements, const FrameView& view) {
    _vertices.clear();
    _indices.clear();
    _batchStarts.assign(1, 0);
    for (Placement& placement : placements) {
        if (placement.kind == DrawKind::fill && placement.isDrawn && !placement.mesh) {
            append(placement, view);
        }
    }
    if (!_vertexBuffer) {
        _vertexBuffer = GLBuffer::make(_graveyard);
        _indexBuffer = GLBuffer::make(_graveyard);
    }
    const std::size_t vertexBytes = _vertices.size() * sizeof(Vertex);
    const std::size_t indexBytes = _indices.size() * sizeof(std::uint16_t);
    glBindBuffer(GL_ARRAY_BUFFER, _vertexBuffer.name());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertexBytes), _vertices.data(), GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _indexBuffer.name());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indexBytes), _indices.data(),
                 GL_DYNAMIC_DRAW);
    return vertexBytes + indexBytes;
}

void FillPainter::append(Placement& placement, const FrameView& view) {
    const SCNMesh& mesh = *placement.item->mesh;
    if (_vertices.size() - _batchStarts.back() + mesh.vertexCount() > kReach16) {
        _batchStarts.push_back(_vertices.size());
    }
    const std::size_t first = _vertices.size() - _batchStarts.back();
    const auto color = paintOf(*placement.item);
    for (std::size_t i = 0; i < mesh.vertexCount(); ++i) {
        const float* v = &mesh.vertices[i * 3];
        const auto position = view.relative(placement.item->meshPosition + Vector3d{v[0], v[1], v[2]});
        _vertices.push_back(
            {{position[0], position[1], position[2]}, {color[0], color[1], color[2], color[3]}});
    }
    placement.batch = static_cast<std::uint32_t>(_batchStarts.size() - 1);
    placement.firstIndex = static_cast<std::uint32_t>(_indices.size());
    for (std::size_t i = 0; i + 2 < mesh.indexCount(); i += 3) {
        const std::uint32_t corners[] = {mesh.index(i), mesh.index(i + 1), mesh.index(i + 2)};
        if (corners[0] < mesh.vertexCount() && corners[1] < mesh.vertexCount() &&
            corners[2] < mesh.vertexCount()) {
            for (const std::uint32_t corner : corners) {
                _indices.push_back(static_cast<std::uint16_t>(first + corner));
            }
        }
    }
    placement.indexCount = static_cast<std::uint32_t>(_indices.size()) - placement.firstIndex;
}

void FillPainter::useShared(const FrameView& view, VertexArrays& arrays) {
    glUseProgram(_program.program.name());
    glUniformMatrix4fv(_program.matrix, 1, GL_FALSE, view.matrix().data());
    arrays.enable(0x3);
    glBindBuffer(GL_ARRAY_BUFFER, _vertexBuffer.name());
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _indexBuffer.name());
}

void FillPainter::drawShared(std::uint32_t batch, std::uint32_t firstIndex, std::uint32_t indexCount) const {
    const std::size_t base = _batchStarts[batch] * sizeof(Vertex);
    constexpr GLsizei stride = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, position)));
    glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, color)));
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indexCount), GL_UNSIGNED_SHORT,
                   bufferOffset(firstIndex * sizeof(std::uint16_t)));
}

int FillPainter::drawLarge(const Placement& placement, const FrameView& view, VertexArrays& arrays) const {
    const MeshBuffers& mesh = *placement.mesh;
    glUseProgram(_program.program.name());
    glUniformMatrix4fv(_program.matrix, 1, GL_FALSE, view.matrixFor(placement.item->meshPosition).data());
    glVertexAttrib4fv(1, paintOf(*placement.item).data());
    arrays.enable(0x1);
    glBindBuffer(GL_ARRAY_BUFFER, mesh.vertices.name());
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.indices.name());
    for (const MeshBuffers::Piece& piece : mesh.pieces) {
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, mesh.stride,
                              bufferOffset(piece.firstVertex * static_cast<std::size_t>(mesh.stride)));
        glDrawElements(GL_TRIANGLES, piece.indexCount, piece.indexType, bufferOffset(piece.firstIndexByte));
    }
    glVertexAttrib4f(1, 0, 0, 0, 1);
    return static_cast<int>(mesh.pieces.size());
}

} // namespace trelmix
