/// @file
/// Points, sizes and rectangles of the screen: doubles in points, origin at the top left, y downward.
#pragma once

namespace trelmix {

/// A place on screen or in an image, in points.
struct CGPoint {
    double x = 0; ///< to the right
    double y = 0; ///< downward
    /// Equal in every member; NaN equals nothing.
    friend bool operator==(const CGPoint&, const CGPoint&) = default;
};

/// A width and a height, in points.
struct CGSize {
    double width = 0;  ///< of the horizontal side
    double height = 0; ///< of the vertical side
    /// Equal in every member; NaN equals nothing.
    friend bool operator==(const CGSize&, const CGSize&) = default;
};

/// A rectangle given by its top-left corner and its size, in points.
struct CGRect {
    CGPoint origin; ///< top left corner
    CGSize size;    ///< to the right of it and below
    /// Equal in every member; NaN equals nothing.
    friend bool operator==(const CGRect&, const CGRect&) = default;
};

} // namespace trelmix
