#pragma once

#include "Platform/View/UIImageView.h"

#include <Trelmix/Platform/CLLocation.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace trelmix {

/// Where something stands in the world.
struct SideviewPlace {
    CLLocationCoordinate2D coordinate;
    std::int64_t levelNumber = 0;
};

/// An icon on the side view's bitmap; it shows once it has both an icon and a place.
struct SideviewMarker {
    std::shared_ptr<UIImageView> imageView;
    std::shared_ptr<const UIImage> icon;
    /// Of the icon's centre.
    std::optional<SideviewPlace> place;
};

} // namespace trelmix
