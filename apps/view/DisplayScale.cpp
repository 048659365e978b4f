#include "view/DisplayScale.h"

#include <X11/Xlib.h>

#include <cstdlib>
#include <memory>

namespace trelmix::apps {

namespace {

constexpr double kDotsPerScale = 96;
constexpr double kLeastScale = 0.5;
constexpr double kMostScale = 8;

} // namespace

std::optional<double> displayScale() {
    // A connection of its own: an open one keeps the resources that it began with.
    const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
    const char* text = display ? XGetDefault(display.get(), "Xft", "dpi") : nullptr;
    const double scale = text != nullptr ? std::strtod(text, nullptr) / kDotsPerScale : 0;
    return scale >= kLeastScale && scale <= kMostScale ? std::optional(scale) : std::nullopt;
}

} // namespace trelmix::apps
