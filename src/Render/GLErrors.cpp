#include "Render/GLErrors.h"

#include <GLES2/gl2.h>

namespace trelmix {

namespace {

/// A lost context answers with an error for ever.
constexpr int kMostErrors = 16;

std::string nameOf(GLenum error) {
    switch (error) {
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_INVALID_FRAMEBUFFER_OPERATION:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    default:
        return "OpenGL error " + std::to_string(error);
    }
}

} // namespace

void forgetErrors() {
    for (int i = 0; i < kMostErrors && glGetError() != GL_NO_ERROR; ++i) {
    }
}

std::string takeError() {
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR) {
        return {};
    }
    forgetErrors();
    return nameOf(error);
}

} // namespace trelmix
