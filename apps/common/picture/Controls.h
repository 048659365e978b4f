#pragma once

#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <string>

namespace trelmix::apps {

/// Light text on a dark translucent ground. Lines end at line breaks, and at blanks where they would be wider
/// than `maximumWidth` points. Empty for a text without anything to show.
/// @param scale pixels per point, here and below.
std::shared_ptr<const UIImage> labelImage(const std::string& text, double scale, double maximumWidth);

/// A round button, 40 points wide, with a needle whose red end points north.
/// @param rotation degrees; the map's heading at the top of the picture.
std::shared_ptr<const UIImage> northArrowImage(double rotation, double scale);

/// A length on the ground that is a round number, and what it takes on screen.
struct ScaleBar {
    /// Points.
    double length = 0;
    /// "50 m", "2 km".
    std::string text;
    friend bool operator==(const ScaleBar&, const ScaleBar&) = default;
};

/// The longest of 1, 2 and 5 times a power of ten metres that is not longer than `maximumLength` points; no
/// length when the scale is not a positive number.
ScaleBar scaleBarFor(double metresPerPoint, double maximumLength);
/// Empty without a length.
std::shared_ptr<const UIImage> scaleBarImage(const ScaleBar& bar, double scale);

} // namespace trelmix::apps
