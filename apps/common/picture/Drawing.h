#pragma once

#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <string>

namespace trelmix::apps {

/// The pin that stands for markers without an icon of their own: 24 x 32 points, two pixels a point, its tip
/// at the middle of the lower edge, its eye open. White with a dark rim, to be tinted.
std::shared_ptr<const UIImage> pinImage();

/// Small dark text on a translucent white ground with round corners, as wide as it needs to be but not wider
/// than `maximumWidth` points (then it is broken into lines at blanks). Empty for a text without anything to
/// show.
/// @param scale pixels per point.
std::shared_ptr<const UIImage> attributionImage(const std::string& text, double scale, double maximumWidth);

/// A picture with the attribution in its lower right corner; both have the same scale. Without one, the
/// picture itself.
std::shared_ptr<const UIImage> withAttribution(const std::shared_ptr<const UIImage>& picture,
                                               const std::shared_ptr<const UIImage>& attribution);

} // namespace trelmix::apps
