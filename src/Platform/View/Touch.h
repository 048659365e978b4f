#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cstdint>

namespace trelmix {

enum class TouchPhase { began, moved, ended, cancelled };

/// One finger's news, as a host delivers it.
struct Touch {
    /// Names the finger from `began` to `ended` or `cancelled`.
    std::int64_t identifier = 0;
    TouchPhase phase = TouchPhase::began;
    /// Points, in the coordinates of the dispatcher's root view.
    CGPoint location;
    /// Seconds of a clock that runs as `Clock` does; only differences matter.
    double timestamp = 0;
};

} // namespace trelmix
