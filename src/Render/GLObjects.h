#pragma once

#include <GLES2/gl2.h>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace trelmix {

enum class GLKind { texture, buffer, framebuffer, renderbuffer, program };

/// Names of OpenGL objects that are no longer needed, until the context's thread deletes them.
///
/// One for each context, shared by everything that holds objects of it. Objects may be dropped on any thread;
/// only `deleteObjects` makes OpenGL calls. What is still in it when a context has gone went with the
/// context.
class GLGraveyard {
public:
    void bury(GLKind kind, GLuint name);
    /// The context is current on the calling thread.
    void deleteObjects();

private:
    std::mutex _mutex;
    std::vector<std::pair<GLKind, GLuint>> _dead;
};

/// One OpenGL object, owned. Made with the context current; dropped anywhere.
template <GLKind kind>
class GLObject {
public:
    GLObject() = default;
    GLObject(std::shared_ptr<GLGraveyard> graveyard, GLuint name)
        : _graveyard(std::move(graveyard)), _name(name) {}
    GLObject(GLObject&& other) noexcept
        : _graveyard(std::move(other._graveyard)), _name(std::exchange(other._name, 0)) {}
    GLObject& operator=(GLObject&& other) noexcept {
        std::swap(_graveyard, other._graveyard);
        std::swap(_name, other._name);
        return *this;
    }
    ~GLObject() {
        if (_name != 0 && _graveyard) {
            _graveyard->bury(kind, _name);
        }
    }

    static GLObject make(const std::shared_ptr<GLGraveyard>& graveyard);
    GLuint name() const { return _name; }
    explicit operator bool() const { return _name != 0; }

private:
    std::shared_ptr<GLGraveyard> _graveyard;
    GLuint _name = 0;
};

using GLTexture = GLObject<GLKind::texture>;
using GLBuffer = GLObject<GLKind::buffer>;
using GLFramebuffer = GLObject<GLKind::framebuffer>;
using GLRenderbuffer = GLObject<GLKind::renderbuffer>;
using GLProgram = GLObject<GLKind::program>;

} // namespace trelmix
