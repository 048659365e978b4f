#pragma once

#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/Platform/CGGeometry.h>

#include <optional>

namespace trelmix::apps {

/// Where everything lies in the window. Points from its top left corner, on whole pixels.
struct ScreenLayout {
    CGSize window;
    CGRect map;
    /// Below the map; without a side view it has no size.
    CGRect side;
    /// Pixels per point.
    double scale = 1;
    friend bool operator==(const ScreenLayout&, const ScreenLayout&) = default;

    ViewHost::Layout hostLayout() const { return {window, map, scale}; }
};

/// The side view gets the height of its picture when that fills the width, but not more than a part of the
/// window.
/// @param sidePicture the size of the side view's picture in points, when there is one.
ScreenLayout layoutFor(CGSize windowPixels, double scale, std::optional<CGSize> sidePicture);

bool contains(const CGRect& rect, CGPoint point);

} // namespace trelmix::apps
