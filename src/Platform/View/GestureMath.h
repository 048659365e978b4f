#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cmath>

namespace trelmix {

inline double distanceBetween(CGPoint a, CGPoint b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

} // namespace trelmix
