#pragma once

#include "Render/GLObjects.h"

#include <Trelmix/Platform/Result.h>

#include <span>
#include <string>

namespace trelmix {

/// The attribute that a name in a vertex shader is bound to.
struct GLAttribute {
    GLuint index = 0;
    const char* name = nullptr;
};

/// The same fragment shader for a driver whose fragments have no `highp`.
std::string withMediumPrecision(const std::string& fragmentShader);

/// Compiles and links the two sources byte for byte; the reason of a failure is the driver's own.
Result<GLProgram> linkProgram(const std::shared_ptr<GLGraveyard>& graveyard, const std::string& vertexShader,
                              const std::string& fragmentShader, std::span<const GLAttribute> attributes);

} // namespace trelmix
