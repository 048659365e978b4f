#include "view/Window.h"

#include "view/DisplayScale.h"

#include <GLES2/gl2.h>
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trelmix::apps {

namespace {

constexpr const char* kDriverHint =
    "install an OpenGL ES driver: apt-get install libgl1-mesa-dri libegl1 libgles2";

/// What drivers can do.
constexpr double kLargestSide = 16384;

void setHints() {
    // OpenGL ES through GLX is missing from many drivers.
    SDL_SetHint(SDL_HINT_VIDEO_X11_FORCE_EGL, "1");
    SDL_SetHint(SDL_HINT_OPENGL_ES_DRIVER, "1");
    SDL_SetHint(SDL_HINT_TOUCH_MOUSE_EVENTS, "0");
    SDL_SetHint(SDL_HINT_MOUSE_TOUCH_EVENTS, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
}

/// Starts the window system and the driver, once in a process: they stay until its end, as drivers do not
/// survive being unloaded reliably. Empty when it went well.
std::string startVideo() {
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0) {
        return {};
    }
    setHints();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        return std::string("no window can be opened: ") + SDL_GetError();
    }
    std::string fault;
    // Without a display SDL draws where nobody sees it, unless that is what was asked for.
    const std::string driver = SDL_GetCurrentVideoDriver();
    if ((driver == "offscreen" || driver == "dummy") && SDL_getenv("SDL_VIDEODRIVER") == nullptr) {
        fault = "no window can be opened: there is no display (trelmix render needs none)";
    }
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_ES);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 0);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
    if (fault.empty() && SDL_GL_LoadLibrary(nullptr) != 0) {
        fault = std::string(SDL_GetError()) + "; " + kDriverHint;
    }
    if (!fault.empty()) {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }
    return fault;
}

/// What a window can have of the first display, without panels.
CGSize sizeOfDisplay() {
    SDL_Rect bounds;
    const bool isKnown = SDL_GetDisplayUsableBounds(0, &bounds) == 0 && bounds.w > 0 && bounds.h > 0;
    return isKnown ? CGSize{static_cast<double>(bounds.w), static_cast<double>(bounds.h)}
                   : CGSize{kLargestSide, kLargestSide};
}

/// A window manager's borders, which are there once the window is shown, belong to what a window can have.
void leaveRoomForBorders(SDL_Window* window, CGSize most) {
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
    SDL_PumpEvents();
    if (SDL_GetWindowBordersSize(window, &top, &left, &bottom, &right) != 0) {
        return;
    }
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(window, &width, &height);
    const int widest = std::max(1, static_cast<int>(most.width) - left - right);
    const int highest = std::max(1, static_cast<int>(most.height) - top - bottom);
    if (width > widest || height > highest) {
        SDL_SetWindowSize(window, std::min(width, widest), std::min(height, highest));
    }
}

void* contextOf(SDL_Window* window) {
    for (const int version : {3, 2}) {
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, version);
        if (void* context = SDL_GL_CreateContext(window)) {
            return context;
        }
    }
    return nullptr;
}

} // namespace

Result<std::unique_ptr<Window>> Window::open(const std::string& title, CGSize size,
                                             std::optional<double> scale) {
    using Made = Result<std::unique_ptr<Window>>;
    if (std::string fault = startVideo(); !fault.empty()) {
        return Made::failure(std::move(fault));
    }
    std::unique_ptr<Window> made(new Window);
    made->_wakeUpEvent = SDL_RegisterEvents(1);
    const bool countsInPixels = std::string(SDL_GetCurrentVideoDriver()) == "x11";
    made->_scale = scale || !countsInPixels ? scale : displayScale();
    const CGSize most = sizeOfDisplay();
    const auto side = [&](double points, double longest) {
        return static_cast<int>(std::clamp(std::round(points * made->_scale.value_or(1)), 1.0, longest));
    };
    made->_window = SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                                     side(size.width, most.width), side(size.height, most.height),
                                     SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (made->_window != nullptr) {
        leaveRoomForBorders(made->_window, most);
        made->_context = contextOf(made->_window);
    }
    if (made->_context == nullptr) {
        return Made::failure(std::string(SDL_GetError()) + "; " + kDriverHint);
    }
    made->release();
    return made;
}

bool Window::isDriverMissing(const std::string& reason) {
    return reason.ends_with(kDriverHint);
}

Window::~Window() {
    if (_context != nullptr) {
        SDL_GL_DeleteContext(_context);
    }
    if (_window != nullptr) {
        SDL_DestroyWindow(_window);
    }
}

CGSize Window::size() const {
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_window, &width, &height);
    return {static_cast<double>(width), static_cast<double>(height)};
}

CGSize Window::pixelSize() const {
    int width = 0;
    int height = 0;
    SDL_GL_GetDrawableSize(_window, &width, &height);
    return {static_cast<double>(width), static_cast<double>(height)};
}

double Window::scale() const {
    const CGSize units = size();
    const CGSize pixels = pixelSize();
    return _scale.value_or(units.width > 0 && pixels.width > 0 ? pixels.width / units.width : 1);
}

void Window::setTitle(const std::string& title) {
    SDL_SetWindowTitle(_window, title.c_str());
}

bool Window::makeCurrent() {
    return SDL_GL_MakeCurrent(_window, _context) == 0;
}

void Window::present() {
    SDL_GL_SwapWindow(_window);
}

void Window::release() {
    SDL_GL_MakeCurrent(_window, nullptr);
}

RenderThread::Surface Window::surface() {
    return {[this] {
                const bool isCurrent = makeCurrent();
                if (isCurrent) {
                    SDL_GL_SetSwapInterval(1);
                }
                return isCurrent;
            },
            [this] { present(); },
            [this] {
                release();
                // The thread is not one of SDL's, which would do this by themselves.
                SDL_TLSCleanup();
            }};
}

std::shared_ptr<const UIImage> Window::drawnPicture(int width, int height, double scale) const {
    const auto row = static_cast<std::ptrdiff_t>(width) * 4;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(row) * static_cast<std::size_t>(height));
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (std::ptrdiff_t top = 0; top < height / 2; ++top) {
        const auto start = pixels.begin() + top * row;
        std::swap_ranges(start, start + row, pixels.end() - (top + 1) * row);
    }
    // The window system ignores what the context holds as alpha.
    for (std::size_t i = 3; i < pixels.size(); i += 4) {
        pixels[i] = 255;
    }
    return UIImage::withPixels(width, height, std::move(pixels), scale);
}

} // namespace trelmix::apps
