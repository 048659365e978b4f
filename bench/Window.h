#pragma once

#include "Platform/Render/FrameTarget.h"
#include "Platform/Render/GLContext.h"

#include <Trelmix/Host/ViewHost.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace trelmix::bench {

/// What an application with a window has, without the window: a context, and a bitmap that is bound for
/// drawing in its place. One sample, as in windows on a software driver.
class Window {
public:
    Window(std::shared_ptr<TrelmixMapEngine> engine, CGSize size) : _context(started()) {
        const int width = static_cast<int>(size.width);
        const int height = static_cast<int>(size.height);
        _bitmap = std::make_unique<FrameTarget>(_context->capabilities(), _context->graveyard());
        _bitmap->resize(width, height, 1);
        _bitmap->bindForDrawing();
        auto host = ViewHost::make(std::move(engine), {size, {{0, 0}, size}, 1}, {.samples = 1});
        if (!host) {
            std::fprintf(stderr, "%s\n", host.reason().c_str());
            std::exit(3);
        }
        _host = std::move(*host);
    }

    ViewHost& host() { return *_host; }
    const GLCapabilities& capabilities() const { return _context->capabilities(); }

private:
    static std::unique_ptr<GLContext> started() {
        auto context = GLContext::makeOffscreen();
        if (!context) {
            std::fprintf(stderr, "%s\n", context.reason().c_str());
            std::exit(3);
        }
        return std::move(*context);
    }

    std::unique_ptr<GLContext> _context;
    std::unique_ptr<FrameTarget> _bitmap;
    std::unique_ptr<ViewHost> _host;
};

} // namespace trelmix::bench
