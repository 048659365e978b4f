#pragma once

#include <array>
#include <string>

struct SDL_Window;

namespace trelmix::apps {

/// What another client of the X server sees and does. X11's headers, full of macros, stay out of the tests.
namespace xdisplay {

/// Red, green, blue of what the screen shows at a pixel of the window.
std::array<int, 3> shownPixel(SDL_Window* window, int x, int y);
/// Lines such as "Xft.dpi:\t192\n", for windows that are opened from now on.
void setResources(const std::string& lines);
/// Whether the screen has a window of that title.
bool hasWindow(const std::string& title);

} // namespace xdisplay

} // namespace trelmix::apps
