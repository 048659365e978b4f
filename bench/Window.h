#pragma once

#include "Render/FrameTarget.h"
#include "Render/GLContext.h"

#include <Trelmix/Host/ViewHost.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace trelmix::bench {

/// What an application with a window has, without the window: a context, and a bitmap that is bound for
/// drawing in its place. One sample, as in windows on a software driver.
class Window {
public:
    explicit Window(CGSize size) : _size(size), _context(orEnd(GLContext::makeOffscreen())) {
        _bitmap = std::make_unique<FrameTarget>(_context->capabilities(), _context->graveyard());
        _bitmap->resize(static_cast<int>(size.width), static_cast<int>(size.height), 1);
        _bitmap->bindForDrawing();
    }

    /// Once.
    void show(std::shared_ptr<TrelmixMapEngine> engine) {
        _host = orEnd(ViewHost::make(std::move(engine), {_size, {{0, 0}, _size}, 1}, {.samples = 1}));
    }

    ViewHost& host() { return *_host; }
    const GLCapabilities& capabilities() const { return _context->capabilities(); }

private:
    template <class T>
    static T orEnd(Result<T> result) {
        if (!result) {
            std::fprintf(stderr, "%s\n", result.reason().c_str());
            std::exit(3);
        }
        return std::move(*result);
    }

    CGSize _size;
    std::unique_ptr<GLContext> _context;
    std::unique_ptr<FrameTarget> _bitmap;
    std::unique_ptr<ViewHost> _host;
};

} // namespace trelmix::bench
