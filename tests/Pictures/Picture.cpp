#include "Pictures/Picture.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>

namespace trelmix::pictures {

double Picture::coverage(int x, int y, Rgb color, Rgb background) const {
    const Rgb pixel = at(x, y);
    double along = 0, whole = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        along += (pixel[i] - background[i]) * (color[i] - background[i]);
        whole += (color[i] - background[i]) * (color[i] - background[i]);
    }
    return along / whole;
}

void Picture::save(const std::string& name) const {
    const auto png = image->pngData();
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
}

Blob blobIn(const Picture& picture, const Window& window, Rgb color, Rgb background) {
    Blob blob;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int x = window.left; x < window.right; ++x) {
            const double share = picture.coverage(x, y, color, background);
            blob.area += share;
            blob.centre.x += share * (x + 0.5);
            blob.centre.y += share * (y + 0.5);
        }
    }
    blob.centre = {blob.centre.x / blob.area, blob.centre.y / blob.area};
    return blob;
}

Blob blobOf(const Outline& outline) {
    double area = 0;
    CGPoint sum;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const CGPoint a = outline[i], b = outline[(i + 1) % outline.size()];
        const double cross = a.x * b.y - a.y * b.x;
        area += cross / 2;
        sum.x += (a.x + b.x) * cross / 6;
        sum.y += (a.y + b.y) * cross / 6;
    }
    return {std::abs(area), {sum.x / area, sum.y / area}};
}

Window windowAround(const Outline& outline, int margin, int width, int height) {
    Window window{width, height, 0, 0};
    for (const CGPoint p : outline) {
        window.left = std::min(window.left, static_cast<int>(std::floor(p.x)) - margin);
        window.top = std::min(window.top, static_cast<int>(std::floor(p.y)) - margin);
        window.right = std::max(window.right, static_cast<int>(std::ceil(p.x)) + margin);
        window.bottom = std::max(window.bottom, static_cast<int>(std::ceil(p.y)) + margin);
    }
    return {std::max(0, window.left), std::max(0, window.top), std::min(width, window.right),
            std::min(height, window.bottom)};
}

double depthInside(const Outline& outline, CGPoint point) {
    double smallest = std::numeric_limits<double>::max();
    double largest = std::numeric_limits<double>::lowest();
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const CGPoint a = outline[i], b = outline[(i + 1) % outline.size()];
        const double side = ((b.x - a.x) * (point.y - a.y) - (b.y - a.y) * (point.x - a.x)) /
                            std::hypot(b.x - a.x, b.y - a.y);
        smallest = std::min(smallest, side);
        largest = std::max(largest, side);
    }
    // Whichever way the outline runs.
    return std::max(smallest, -largest);
}

} // namespace trelmix::pictures
