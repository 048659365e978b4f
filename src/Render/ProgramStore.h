#pragma once

#include "Platform/Scene/DrawList.h"
#include "Render/FrameView.h"
#include "Render/MeshStore.h"
#include "Render/VertexArrays.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace trelmix {

/// A program of given shaders, compiled as they are; only where fragments have no `highp`, with `mediump` for
/// it.
class ShaderProgram {
public:
    explicit ShaderProgram(SCNProgram source) : _source(std::move(source)) {}

    /// Compiles and links, once; empty when it went well.
    std::string prepare(const std::shared_ptr<GLGraveyard>& graveyard, bool hasHighPrecision);

    /// Draws a mesh whose origin the matrix is for; returns the number of draw calls.
    int draw(const MeshBuffers& mesh, const std::array<float, 16>& matrix, const DrawItem& item,
             VertexArrays& arrays);
    GLuint name() const { return _program.name(); }

    /// The attribute that a semantic is always bound to; -1 for the matrix.
    static int attributeOf(SCNSemantic semantic);

private:
    void pointAt(const MeshBuffers& mesh, std::size_t firstVertex, VertexArrays& arrays) const;
    GLint locationOf(const std::string& symbol);

    SCNProgram _source;
    GLProgram _program;
    /// Why it cannot be linked.
    std::string _fault;
    GLint _matrix = -1;
    std::vector<std::pair<std::string, GLint>> _locations;
};

/// The programs of one context. Nodes whose programs have the same text share one.
class ProgramStore {
public:
    /// Stays valid for the life of the store.
    ShaderProgram& find(const SCNProgram& source);

private:
    std::map<std::string, std::unique_ptr<ShaderProgram>> _programs;
};

} // namespace trelmix
