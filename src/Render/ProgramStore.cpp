#include "Render/ProgramStore.h"

#include "Render/GLShader.h"
#include "Render/Placement.h"

namespace trelmix {

namespace {

constexpr GLuint kVertex = 0;
constexpr GLuint kNormal = 1;
constexpr GLuint kTangent = 2;

/// A program has no input for its node's opacity, but the colours that its handlers write are premultiplied:
/// scaled, they carry it.
class CurrentProgramWriter final : public UniformWriter {
public:
    explicit CurrentProgramWriter(float opacity) : _opacity(opacity) {}
    void glUniform1f(int location, float value) override { ::glUniform1f(location, value); }
    void glUniform4fv(int location, int count, const float* values) override {
        for (int i = 0; i < count; ++i, values += 4) {
            const float scaled[4] = {values[0] * _opacity, values[1] * _opacity, values[2] * _opacity,
                                     values[3] * _opacity};
            ::glUniform4fv(location + i, 1, scaled);
        }
    }

private:
    float _opacity;
};

/// Everything that a compiled program depends on.
std::string keyOf(const SCNProgram& source) {
    std::string key = source.vertexShader + '\0' + source.fragmentShader;
    for (const auto& [symbol, semantic] : source.symbols) {
        key += '\0' + symbol + '\0' + static_cast<char>('a' + static_cast<int>(semantic));
    }
    return key;
}

} // namespace

int ShaderProgram::attributeOf(SCNSemantic semantic) {
    switch (semantic) {
    case SCNSemantic::vertex:
        return kVertex;
    case SCNSemantic::normal:
        return kNormal;
    case SCNSemantic::tangent:
        return kTangent;
    case SCNSemantic::texcoord:
        return 3;
    case SCNSemantic::color:
        return 4;
    case SCNSemantic::modelViewProjection:
        break;
    }
    return -1;
}

std::string ShaderProgram::prepare(const std::shared_ptr<GLGraveyard>& graveyard, bool hasHighPrecision) {
    if (_program || !_fault.empty()) {
        return _fault;
    }
    std::vector<GLAttribute> attributes;
    for (const auto& [symbol, semantic] : _source.symbols) {
        if (const int index = attributeOf(semantic); index >= 0) {
            attributes.push_back({static_cast<GLuint>(index), symbol.c_str()});
        }
    }
    const std::string& fragment = _source.fragmentShader;
    auto linked = linkProgram(graveyard, _source.vertexShader,
                              hasHighPrecision ? fragment : withMediumPrecision(fragment), attributes);
    if (!linked) {
        _fault = linked.reason();
        return _fault;
    }
    _program = std::move(*linked);
    for (const auto& [symbol, semantic] : _source.symbols) {
        if (semantic == SCNSemantic::modelViewProjection) {
            _matrix = glGetUniformLocation(_program.name(), symbol.c_str());
        }
    }
    return {};
}

GLint ShaderProgram::locationOf(const std::string& symbol) {
    for (const auto& [known, location] : _locations) {
        if (known == symbol) {
            return location;
        }
    }
    _locations.emplace_back(symbol, glGetUniformLocation(_program.name(), symbol.c_str()));
    return _locations.back().second;
}

int ShaderProgram::draw(const MeshBuffers& mesh, const std::array<float, 16>& matrix, const DrawItem& item,
                        VertexArrays& arrays) {
    glUniformMatrix4fv(_matrix, 1, GL_FALSE, matrix.data());
    if (item.bindings) {
        CurrentProgramWriter writer(fraction(item.opacity));
        for (const auto& [symbol, handler] : *item.bindings) {
            // A uniform that the shaders do not use has no place to be written to.
            const GLint location = locationOf(symbol);
            if (location >= 0 && handler) {
                handler(writer, location);
            }
        }
    }
    glBindBuffer(GL_ARRAY_BUFFER, mesh.vertices.name());
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.indices.name());
    for (const MeshBuffers::Piece& piece : mesh.pieces) {
        pointAt(mesh, piece.firstVertex, arrays);
        glDrawElements(GL_TRIANGLES, piece.indexCount, piece.indexType, bufferOffset(piece.firstIndexByte));
    }
    return static_cast<int>(mesh.pieces.size());
}

void ShaderProgram::pointAt(const MeshBuffers& mesh, std::size_t firstVertex, VertexArrays& arrays) const {
    std::size_t offset = firstVertex * static_cast<std::size_t>(mesh.stride);
    unsigned mask = 0;
    const auto add = [&](GLuint attribute) {
        glVertexAttribPointer(attribute, 3, GL_FLOAT, GL_FALSE, mesh.stride, bufferOffset(offset));
        offset += 3 * sizeof(float);
        mask |= 1U << attribute;
    };
    add(kVertex);
    if (mesh.hasNormals) {
        add(kNormal);
    }
    if (mesh.hasTangents) {
        add(kTangent);
    }
    // What the mesh does not have reads as the attribute's constant.
    arrays.enable(mask);
}

ShaderProgram& ProgramStore::find(const SCNProgram& source) {
    auto& program = _programs[keyOf(source)];
    if (!program) {
        program = std::make_unique<ShaderProgram>(source);
    }
    return *program;
}

} // namespace trelmix
