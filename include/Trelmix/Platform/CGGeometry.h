/// @file
/// Points, sizes and rectangles of the screen: doubles in points, origin at the top left, y downward.
#pragma once

namespace trelmix {

/// A place on screen or in an image, in points.
struct CGPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const CGPoint&, const CGPoint&) = default;
};

/// A width and a height, in points.
struct CGSize {
    double width = 0;
    double height = 0;
    friend bool operator==(const CGSize&, const CGSize&) = default;
};

/// A rectangle given by its top-left corner and its size, in points.
struct CGRect {
    CGPoint origin;
    CGSize size;
    friend bool operator==(const CGRect&, const CGRect&) = default;
};

} // namespace trelmix
