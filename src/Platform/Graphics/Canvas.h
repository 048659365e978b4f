#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/UIColor.h>

#include <memory>
#include <optional>
#include <string_view>

namespace trelmix {

class UIBezierPath;
class UIImage;

/// A bitmap to draw on: in points, origin at the top left, y downward. It starts transparent.
///
/// Owned by whoever makes it, on any one thread at a time. Numbers that are not finite make a call do
/// nothing. A size that no bitmap can have gives a canvas on which nothing appears and which has no image.
///
/// Larger than most classes: one call for each thing that can be drawn, each with its guard against
/// impossible numbers.
class Canvas {
public:
    /// @param width,height pixels, 1 to 32767 each and at most `UIImage::kMaximumPixelCount` together.
    /// @param scale pixels per point.
    Canvas(int width, int height, double scale = 1);
    /// Starts with a copy of an image, at its scale.
    explicit Canvas(const UIImage& image);
    ~Canvas();
    Canvas(Canvas&& other) noexcept;
    Canvas& operator=(Canvas&& other) noexcept;

    /// False when the size was refused.
    bool isValid() const { return _surface != nullptr; }
    /// A copy of what has been drawn; empty when the canvas is not valid.
    std::shared_ptr<const UIImage> image() const&;
    /// The same without a copy; the canvas is no longer valid.
    std::shared_ptr<const UIImage> image() &&;

    /// Replaces everything within the clip, transparency included.
    void clear(UIColor color);
    void fillRect(CGRect rect, UIColor color);
    /// Open runs are closed; overlapping runs are filled by the non-zero rule.
    void fillPath(const UIBezierPath& path, UIColor color);
    /// With the path's line width, flat ends and mitered corners.
    void strokePath(const UIBezierPath& path, UIColor color);
    /// Stretches the whole image over the rectangle, smoothly in both directions.
    void drawImage(const UIImage& image, CGRect rect, double alpha = 1);

    struct TextStyle {
        double size = 12;
        UIColor color = UIColor::blackColor();
        bool isBold = false;
        /// Drawn around the letters, so that they can be read on any ground.
        std::optional<UIColor> halo;
    };
    /// One line of UTF-8 (wrong bytes are shown as replacement characters, control characters as spaces, at
    /// most 1000 characters), from the left end of its baseline on.
    void drawText(std::string_view text, CGPoint baseline, const TextStyle& style);
    /// How far the pen moves along the baseline, in points.
    double textWidth(std::string_view text, double size, bool isBold = false) const;

    /// Remembers the transform and the clip.
    void save();
    /// Brings back what was last remembered; without a `save` it does nothing.
    void restore();
    void translate(double x, double y);
    /// Factors of 0 are ignored.
    void scale(double x, double y);
    /// @param radians clockwise on screen.
    void rotate(double radians);
    /// Limits what follows to the rectangle; one without area leaves nothing.
    void clipRect(CGRect rect);

private:
    struct Surface;
    std::unique_ptr<Surface> _surface;
};

} // namespace trelmix
