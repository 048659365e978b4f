#pragma once

#include <optional>

namespace trelmix::apps {

/// Pixels per point of an X11 display, whose windows count in pixels: `Xft.dpi` of its resources, in 96ths.
/// Empty without such a display, and when nobody has set the resource.
std::optional<double> displayScale();

} // namespace trelmix::apps
