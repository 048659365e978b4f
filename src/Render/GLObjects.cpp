#include "Render/GLObjects.h"

namespace trelmix {

void GLGraveyard::bury(GLKind kind, GLuint name) {
    const std::lock_guard lock(_mutex);
    _dead.emplace_back(kind, name);
}

void GLGraveyard::deleteObjects() {
    const std::lock_guard lock(_mutex);
    for (const auto& [kind, name] : _dead) {
        switch (kind) {
        case GLKind::texture:
            glDeleteTextures(1, &name);
            break;
        case GLKind::buffer:
            glDeleteBuffers(1, &name);
            break;
        case GLKind::framebuffer:
            glDeleteFramebuffers(1, &name);
            break;
        case GLKind::renderbuffer:
            glDeleteRenderbuffers(1, &name);
            break;
        case GLKind::program:
            glDeleteProgram(name);
            break;
        }
    }
    _dead.clear();
}

template <GLKind kind>
GLObject<kind> GLObject<kind>::make(const std::shared_ptr<GLGraveyard>& graveyard) {
    GLuint name = 0;
    if constexpr (kind == GLKind::texture) {
        glGenTextures(1, &name);
    } else if constexpr (kind == GLKind::buffer) {
        glGenBuffers(1, &name);
    } else if constexpr (kind == GLKind::framebuffer) {
        glGenFramebuffers(1, &name);
    } else if constexpr (kind == GLKind::renderbuffer) {
        glGenRenderbuffers(1, &name);
    } else {
        name = glCreateProgram();
    }
    return {graveyard, name};
}

template class GLObject<GLKind::texture>;
template class GLObject<GLKind::buffer>;
template class GLObject<GLKind::framebuffer>;
template class GLObject<GLKind::renderbuffer>;
template class GLObject<GLKind::program>;

} // namespace trelmix
