#include "Render/GLShader.h"

#include <regex>
#include <vector>

namespace trelmix {

namespace {

/// A shader of its own for the moment of linking; the linked program keeps what it needs.
class Shader {
public:
    Shader(GLenum type, const std::string& source) : _name(glCreateShader(type)) {
        const char* text = source.c_str();
        const auto length = static_cast<GLint>(source.size());
        glShaderSource(_name, 1, &text, &length);
        glCompileShader(_name);
    }
    ~Shader() { glDeleteShader(_name); }
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    GLuint name() const { return _name; }
    /// Empty when it compiled.
    std::string reason() const {
        GLint ok = GL_FALSE;
        glGetShaderiv(_name, GL_COMPILE_STATUS, &ok);
        if (ok == GL_TRUE) {
            return {};
        }
        std::vector<char> log(4096);
        GLsizei length = 0;
        glGetShaderInfoLog(_name, static_cast<GLsizei>(log.size()), &length, log.data());
        return "does not compile: " + std::string(log.data(), static_cast<std::size_t>(length));
    }

private:
    GLuint _name;
};

} // namespace

std::string withMediumPrecision(const std::string& fragmentShader) {
    static const std::regex high("\\bhighp\\b");
    return std::regex_replace(fragmentShader, high, "mediump");
}

Result<GLProgram> linkProgram(const std::shared_ptr<GLGraveyard>& graveyard, const std::string& vertexShader,
                              const std::string& fragmentShader, std::span<const GLAttribute> attributes) {
    using Linked = Result<GLProgram>;
    const Shader vertex(GL_VERTEX_SHADER, vertexShader);
    if (const std::string reason = vertex.reason(); !reason.empty()) {
        return Linked::failure("the vertex shader " + reason);
    }
    const Shader fragment(GL_FRAGMENT_SHADER, fragmentShader);
    if (const std::string reason = fragment.reason(); !reason.empty()) {
        return Linked::failure("the fragment shader " + reason);
    }
    GLProgram program = GLProgram::make(graveyard);
    glAttachShader(program.name(), vertex.name());
    glAttachShader(program.name(), fragment.name());
    for (const GLAttribute& attribute : attributes) {
        glBindAttribLocation(program.name(), attribute.index, attribute.name);
    }
    glLinkProgram(program.name());
    glDetachShader(program.name(), vertex.name());
    glDetachShader(program.name(), fragment.name());
    GLint ok = GL_FALSE;
    glGetProgramiv(program.name(), GL_LINK_STATUS, &ok);
    if (ok != GL_TRUE) {
        std::vector<char> log(4096);
        GLsizei length = 0;
        glGetProgramInfoLog(program.name(), static_cast<GLsizei>(log.size()), &length, log.data());
        return Linked::failure("the program does not link: " +
                               std::string(log.data(), static_cast<std::size_t>(length)));
    }
    return Linked(std::move(program));
}

} // namespace trelmix
