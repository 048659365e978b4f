#include "apps/view/XDisplay.h"

#include <algorithm>
#include <memory>
#include <SDL_syswm.h>
#include <span>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace trelmix::apps::xdisplay {

namespace {

Display* display() {
    static const std::unique_ptr<Display, int (*)(Display*)> opened(XOpenDisplay(nullptr), XCloseDisplay);
    return opened.get();
}

bool isTitled(Window window, const std::string& title) {
    char* name = nullptr;
    const bool is = XFetchName(display(), window, &name) != 0 && title == name;
    if (name != nullptr) {
        XFree(name);
    }
    return is;
}

} // namespace

std::array<int, 3> shownPixel(SDL_Window* window, int x, int y) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE) {
        return {-1, -1, -1};
    }
    XImage* image = XGetImage(display(), info.info.x11.window, x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr) {
        return {-1, -1, -1};
    }
    const unsigned long color = XGetPixel(image, 0, 0);
    XDestroyImage(image);
    const auto channel = [color](unsigned shift) { return static_cast<int>(color >> shift & 255U); };
    return {channel(16), channel(8), channel(0)};
}

void setResources(const std::string& lines) {
    XChangeProperty(display(), DefaultRootWindow(display()), XA_RESOURCE_MANAGER, XA_STRING, 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(lines.data()),
                    static_cast<int>(lines.size()));
    XSync(display(), False);
}

bool hasWindow(const std::string& title) {
    Window root = 0, parent = 0;
    Window* windows = nullptr;
    unsigned count = 0;
    if (XQueryTree(display(), DefaultRootWindow(display()), &root, &parent, &windows, &count) == 0) {
        return false;
    }
    const std::span<Window> all(windows, count);
    const bool has = std::any_of(all.begin(), all.end(), [&](Window w) { return isTitled(w, title); });
    if (windows != nullptr) {
        XFree(windows);
    }
    return has;
}

} // namespace trelmix::apps::xdisplay
