#include "view/ScreenLayout.h"

#include <algorithm>
#include <cmath>

namespace trelmix::apps {

namespace {

constexpr double kLargestSidePart = 0.45;

} // namespace

ScreenLayout layoutFor(CGSize windowPixels, double scale, std::optional<CGSize> sidePicture) {
    const double width = std::max(1.0, windowPixels.width);
    const double height = std::max(1.0, windowPixels.height);
    double side = 0;
    if (sidePicture && sidePicture->width > 0) {
        // A side view shows its picture smaller, but never larger than it is.
        const double shrink = std::min(1.0, width / scale / sidePicture->width);
        side = std::max(
            1.0, std::floor(std::min(sidePicture->height * shrink * scale, height * kLargestSidePart)));
    }
    const auto points = [scale](double x, double y, double w, double h) {
        return CGRect{{x / scale, y / scale}, {w / scale, h / scale}};
    };
    ScreenLayout layout;
    layout.scale = scale;
    layout.window = {width / scale, height / scale};
    // Neither ever vanishes, however small the window is.
    layout.map = points(0, 0, width, std::max(1.0, height - side));
    if (side > 0) {
        layout.side = points(0, height - side, width, side);
    }
    return layout;
}

bool contains(const CGRect& rect, CGPoint point) {
    return point.x >= rect.origin.x && point.y >= rect.origin.y &&
           point.x < rect.origin.x + rect.size.width && point.y < rect.origin.y + rect.size.height;
}

} // namespace trelmix::apps
