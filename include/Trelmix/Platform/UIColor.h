/// @file
/// A colour as the public interface exchanges it.
#pragma once

#include <Trelmix/Export.h>

namespace trelmix {

/// Red, green, blue and opacity, each 0 to 1, not premultiplied. A plain value. Components outside the range,
/// and those that are not numbers, are limited where the colour is drawn.
struct TRELMIX_API UIColor {
    double red = 0;   ///< 0 to 1
    double green = 0; ///< 0 to 1
    double blue = 0;  ///< 0 to 1
    double alpha = 1; ///< 0 (clear) to 1 (opaque)

    /// Opaque white.
    static constexpr UIColor whiteColor() { return {1, 1, 1, 1}; }
    /// Opaque black.
    static constexpr UIColor blackColor() { return {0, 0, 0, 1}; }
    /// Opaque pure red.
    static constexpr UIColor redColor() { return {1, 0, 0, 1}; }
    /// Opaque pure blue.
    static constexpr UIColor blueColor() { return {0, 0, 1, 1}; }
    /// Transparent black: nothing shows.
    static constexpr UIColor clearColor() { return {0, 0, 0, 0}; }

    /// The same colour with another opacity.
    constexpr UIColor colorWithAlphaComponent(double opacity) const { return {red, green, blue, opacity}; }

    /// Every component limited to [0, 1]; what is not a number becomes 0.
    UIColor limited() const;

    /// Equal in every member; NaN equals nothing.
    friend bool operator==(const UIColor&, const UIColor&) = default;
};

} // namespace trelmix
