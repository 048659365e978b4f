#pragma once

#include "Render/GLCapabilities.h"
#include "Render/GLObjects.h"

#include <Trelmix/Platform/Result.h>

#include <memory>

namespace trelmix {

/// Puts back, when it goes, the context and the interface that were current on this thread when it was made.
class CurrentContextKeeper {
public:
    CurrentContextKeeper();
    ~CurrentContextKeeper();
    CurrentContextKeeper(const CurrentContextKeeper&) = delete;
    CurrentContextKeeper& operator=(const CurrentContextKeeper&) = delete;

private:
    struct Binding;
    std::unique_ptr<const Binding> _before;
};

/// An OpenGL ES context without a window.
///
/// Lives on one thread at a time: `makeCurrent` binds it to the calling one. Its destructor
/// deletes what was buried and leaves the thread with the context that was current there, if that is another.
class GLContext {
public:
    /// Version 3 when the driver has it, else 2. The reason of a failure says what to install.
    static Result<std::unique_ptr<GLContext>> makeOffscreen();
    /// The reason that `makeOffscreen` ends its own with when no driver could be started.
    static const char* missingDriverHint();

    ~GLContext();
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    /// False when the driver refuses, for one because another thread has it current.
    bool makeCurrent();
    /// Leaves the calling thread without a context, so that another can have this one.
    void release();
    const GLCapabilities& capabilities() const { return _capabilities; }
    const std::shared_ptr<GLGraveyard>& graveyard() const { return _graveyard; }

private:
    struct Handles;
    explicit GLContext(std::unique_ptr<Handles> handles);

    std::unique_ptr<Handles> _handles;
    GLCapabilities _capabilities;
    std::shared_ptr<GLGraveyard> _graveyard = std::make_shared<GLGraveyard>();
};

} // namespace trelmix
