#pragma once

#include "Geo/GeoTypes.h"

#include <cmath>

namespace trelmix {

/// An angle inside the engine. Degrees stand only at the public edge, in files, and in coordinates.
struct Radians {
    double value = 0;

    constexpr Radians() = default;
    constexpr explicit Radians(double radians) : value(radians) {}
    static constexpr Radians fromDegrees(double degrees) { return Radians(degrees * DEG_TO_RAD_CONST); }
    constexpr double degrees() const { return value / DEG_TO_RAD_CONST; }
    /// To single precision, in which cameras and markers are given.
    constexpr Radians narrowed() const { return Radians(static_cast<double>(static_cast<float>(value))); }
    bool isFinite() const { return std::isfinite(value); }

    constexpr Radians operator-() const { return Radians(-value); }
    friend constexpr Radians operator+(Radians a, Radians b) { return Radians(a.value + b.value); }
    friend constexpr Radians operator-(Radians a, Radians b) { return Radians(a.value - b.value); }
    friend constexpr bool operator==(const Radians&, const Radians&) = default;
    friend constexpr bool operator<(Radians a, Radians b) { return a.value < b.value; }
};

/// The direction of `goal`, its whole turns taken off, at most half a turn from a `current` within one turn.
Radians shortestTurn(Radians goal, Radians current);

} // namespace trelmix
