#pragma once

#include "support/Pixels.h"

#include <Trelmix/Platform/CGGeometry.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace trelmix::pictures {

/// 0 to 255 each.
using Rgb = std::array<double, 3>;

/// A finished picture; pixel (x, y) has its centre at (x + 0.5, y + 0.5).
class Picture {
public:
    Picture() = default;
    explicit Picture(std::shared_ptr<const UIImage> pixels) : image(std::move(pixels)) {}

    int width() const { return image ? image->pixelWidth() : 0; }
    int height() const { return image ? image->pixelHeight() : 0; }
    Rgb at(int x, int y) const {
        const auto pixel = pixelAt(*image, x, y);
        return {1.0 * pixel[0], 1.0 * pixel[1], 1.0 * pixel[2]};
    }
    /// How much of the pixel the colour covers, when nothing but it and the background is there.
    double coverage(int x, int y, Rgb color, Rgb background) const;
    /// Writes it into the working folder, for whoever looks into a failure.
    void save(const std::string& name) const;

    std::shared_ptr<const UIImage> image;
};

/// What one colour covers inside a rectangle of pixels.
struct Blob {
    double area = 0;
    CGPoint centre;
};
struct Window {
    int left, top;
    int right; ///< not included
    int bottom;
};
Blob blobIn(const Picture& picture, const Window& window, Rgb color, Rgb background);

using Outline = std::vector<CGPoint>;

/// Area and centroid of a polygon.
Blob blobOf(const Outline& outline);
/// The pixels that the outline touches, and `margin` more on every side, within a picture of that size.
Window windowAround(const Outline& outline, int margin, int width, int height);
/// Distance to the border of a convex outline, greater than 0 inside.
double depthInside(const Outline& outline, CGPoint point);

} // namespace trelmix::pictures
