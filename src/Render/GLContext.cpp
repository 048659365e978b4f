#include "Render/GLContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>
#include <string>

namespace trelmix {

namespace {

/// The display of the process. Never terminated: other users of EGL in the process may share it, and drivers
/// do not survive it reliably.
struct OffscreenDisplay {
    EGLDisplay display = EGL_NO_DISPLAY;
    bool isSurfaceless = false;
    std::string reason;
};

EGLDisplay surfacelessDisplay() {
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!extensions || !std::strstr(extensions, "EGL_MESA_platform_surfaceless")) {
        return EGL_NO_DISPLAY;
    }
    const auto getDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    return getDisplay ? getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)
                      : EGL_NO_DISPLAY;
}

OffscreenDisplay openDisplay() {
    OffscreenDisplay result;
    result.display = surfacelessDisplay();
    if (result.display != EGL_NO_DISPLAY && eglInitialize(result.display, nullptr, nullptr)) {
        result.isSurfaceless = true;
        return result;
    }
    result.display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (result.display == EGL_NO_DISPLAY || !eglInitialize(result.display, nullptr, nullptr)) {
        result.display = EGL_NO_DISPLAY;
        result.reason = "no EGL display can be opened";
    }
    return result;
}

const OffscreenDisplay& offscreenDisplay() {
    static const OffscreenDisplay display = openDisplay();
    return display;
}

EGLContext createContext(EGLDisplay display, EGLConfig config) {
    for (const EGLint version : {3, 2}) {
        const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, version, EGL_NONE};
        const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes);
        if (context != EGL_NO_CONTEXT) {
            return context;
        }
    }
    return EGL_NO_CONTEXT;
}

EGLConfig chooseConfig(const OffscreenDisplay& display) {
    const EGLint surface = display.isSurfaceless ? 0 : EGL_PBUFFER_BIT;
    const EGLint attributes[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_SURFACE_TYPE, surface,
                                 EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display.display, attributes, &config, 1, &count) || count < 1) {
        return nullptr;
    }
    return config;
}

} // namespace

struct GLContext::Handles {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

struct CurrentContextKeeper::Binding {
    EGLenum api = eglQueryAPI();
    EGLDisplay display = eglGetCurrentDisplay();
    EGLSurface draw = eglGetCurrentSurface(EGL_DRAW);
    EGLSurface read = eglGetCurrentSurface(EGL_READ);
    EGLContext context = eglGetCurrentContext();
};

CurrentContextKeeper::CurrentContextKeeper() : _before(std::make_unique<const Binding>()) {}

CurrentContextKeeper::~CurrentContextKeeper() {
    const Binding now;
    if (_before->context != EGL_NO_CONTEXT) {
        eglBindAPI(_before->api);
        if (_before->context != eglGetCurrentContext() || _before->draw != now.draw ||
            _before->read != now.read) {
            eglMakeCurrent(_before->display, _before->draw, _before->read, _before->context);
        }
        return;
    }
    if (now.context != EGL_NO_CONTEXT) {
        eglMakeCurrent(now.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
    eglBindAPI(_before->api);
}

const char* GLContext::missingDriverHint() {
    return "install an OpenGL ES driver (Debian: libegl1 libgles2 libgl1-mesa-dri)";
}

Result<std::unique_ptr<GLContext>> GLContext::makeOffscreen() {
    using Made = Result<std::unique_ptr<GLContext>>;
    const auto failure = [](const std::string& why) {
        return Made::failure(why + ": " + missingDriverHint());
    };
    const OffscreenDisplay& display = offscreenDisplay();
    if (display.display == EGL_NO_DISPLAY) {
        return failure(display.reason);
    }
    if (!eglBindAPI(EGL_OPENGL_ES_API)) {
        return failure("EGL offers no OpenGL ES");
    }
    const EGLConfig config = chooseConfig(display);
    if (!config) {
        return failure("EGL offers no framebuffer configuration for OpenGL ES 2");
    }
    auto handles = std::make_unique<Handles>();
    handles->display = display.display;
    handles->context = createContext(display.display, config);
    if (handles->context == EGL_NO_CONTEXT) {
        return failure("no OpenGL ES context can be made");
    }
    if (!display.isSurfaceless) {
        const EGLint size[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        handles->surface = eglCreatePbufferSurface(display.display, config, size);
    }
    std::unique_ptr<GLContext> context(new GLContext(std::move(handles)));
    if (!context->makeCurrent()) {
        return failure("the OpenGL ES context cannot be used without a window");
    }
    context->_capabilities = GLCapabilities::ofCurrentContext();
    return Made(std::move(context));
}

GLContext::GLContext(std::unique_ptr<Handles> handles) : _handles(std::move(handles)) {}

GLContext::~GLContext() {
    release();
    {
        const CurrentContextKeeper keeper;
        if (makeCurrent()) {
            _graveyard->deleteObjects();
        }
    }
    if (_handles->surface != EGL_NO_SURFACE) {
        eglDestroySurface(_handles->display, _handles->surface);
    }
    eglDestroyContext(_handles->display, _handles->context);
}

bool GLContext::makeCurrent() {
    if (eglGetCurrentContext() == _handles->context) {
        return true;
    }
    // The bound interface belongs to the thread, and a thread starts with OpenGL ES only by default.
    eglBindAPI(EGL_OPENGL_ES_API);
    return eglMakeCurrent(_handles->display, _handles->surface, _handles->surface, _handles->context) ==
           EGL_TRUE;
}

void GLContext::release() {
    if (eglGetCurrentContext() == _handles->context) {
        eglMakeCurrent(_handles->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
}

} // namespace trelmix
