#pragma once

#include "Platform/View/UIImageView.h"

#include <memory>
#include <optional>
#include <string>

namespace trelmix {

/// One named marker of the side view; it shows once it has an icon and a place.
struct SideviewMarker {
    std::shared_ptr<UIImageView> imageView;
    std::shared_ptr<const UIImage> icon;
    /// The icon's centre, image points.
    std::optional<CGPoint> position;
    std::string identifier;
};

} // namespace trelmix
