#pragma once

#include "Render/GLCapabilities.h"

#include <memory>

namespace trelmix {

/// Keeps the OpenGL state of an application's context as it was: saves what the renderer changes, puts what
/// it relies on to OpenGL's defaults, and restores all of it at the end of its life. Made and destroyed with
/// the context current.
///
/// Larger than most classes: the list of what is saved and the list of what is restored have to be read side
/// by side.
class GLStateGuard {
public:
    explicit GLStateGuard(const GLCapabilities& capabilities);
    ~GLStateGuard();
    GLStateGuard(const GLStateGuard&) = delete;
    GLStateGuard& operator=(const GLStateGuard&) = delete;

    /// The framebuffer that was bound for drawing.
    unsigned framebuffer() const;

private:
    struct Saved;
    std::unique_ptr<Saved> _saved;
};

} // namespace trelmix
