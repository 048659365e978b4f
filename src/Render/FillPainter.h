#pragma once

#include "Render/FrameView.h"
#include "Render/MeshStore.h"
#include "Render/Placement.h"
#include "Render/VertexArrays.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace trelmix {

/// Draws meshes filled with a colour: small ones together, out of one buffer in painter's order, large ones
/// each from its own.
class FillPainter {
public:
    /// A mesh of more vertices is not copied each time another fill changes.
    static constexpr std::size_t kLargestShared = 4096;

    explicit FillPainter(std::shared_ptr<GLGraveyard> graveyard);
    /// Compiles the shaders, once; empty when it went well.
    std::string prepare(const std::shared_ptr<GLGraveyard>& graveyard);

    /// Writes the shared fills of a list anew; returns the bytes.
    std::size_t write(std::span<Placement> placements, const FrameView& view);

    void useShared(const FrameView& view, VertexArrays& arrays);
    void drawShared(std::uint32_t batch, std::uint32_t firstIndex, std::uint32_t indexCount) const;
    int drawLarge(const Placement& placement, const FrameView& view, VertexArrays& arrays) const;

private:
    struct Vertex {
        float position[3];
        float color[4];
    };
    struct Program {
        GLProgram program;
        GLint matrix = -1;
    };
    void append(Placement& placement, const FrameView& view);

    std::shared_ptr<GLGraveyard> _graveyard;
    Program _program;
    GLBuffer _vertexBuffer;
    GLBuffer _indexBuffer;
    std::vector<Vertex> _vertices;
    std::vector<std::uint16_t> _indices;
    /// Where the vertices begin that a batch's 16-bit indices count from.
    std::vector<std::size_t> _batchStarts;
};

} // namespace trelmix
