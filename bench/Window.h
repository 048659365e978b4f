#pragma once

#include "Render/FrameTarget.h"
#include "Render/GLContext.h"
#include "Render/Renderer.h"

#include <Trelmix/Host/ViewHost.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace trelmix::bench {

/// What stands for a window: a bitmap of one sample a pixel, as windows have on a software driver.
inline FrameTarget makeBitmap(const GLContext& context, int width, int height) {
    FrameTarget bitmap(context.capabilities(), context.graveyard());
    if (const std::string refusal = bitmap.resize(width, height, 1); !refusal.empty()) {
        std::fprintf(stderr, "%s\n", refusal.c_str());
        std::exit(3);
    }
    return bitmap;
}

/// All of it; leaves it bound for drawing.
inline RenderArea areaOf(const FrameTarget& bitmap) {
    bitmap.bindForDrawing();
    GLint framebuffer = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    return {static_cast<unsigned>(framebuffer), 0, 0, bitmap.width(), bitmap.height()};
}

/// What an application with a window has, without the window: a context, and a bitmap that is bound for
/// drawing in its place.
class Window {
public:
    explicit Window(CGSize size)
        : _size(size), _context(orEnd(GLContext::makeOffscreen())),
          _bitmap(makeBitmap(*_context, static_cast<int>(size.width), static_cast<int>(size.height))) {
        _bitmap.bindForDrawing();
    }

    /// Once.
    void show(std::shared_ptr<TrelmixMapEngine> engine) {
        _host = orEnd(ViewHost::make(std::move(engine), {_size, {{0, 0}, _size}, 1}, {.samples = 1}));
    }

    ViewHost& host() { return *_host; }
    /// As showing a window's picture does, waits until the driver has drawn it: else frames pile up in there.
    static void present() { glFinish(); }
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
    FrameTarget _bitmap;
    std::unique_ptr<ViewHost> _host;
};

} // namespace trelmix::bench
