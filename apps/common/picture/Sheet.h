#pragma once

#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <string>
#include <vector>

// As cairo.h declares them, which only those need who draw.
using cairo_t = struct _cairo;                 // NOLINT(bugprone-reserved-identifier)
using cairo_surface_t = struct _cairo_surface; // NOLINT(bugprone-reserved-identifier)

namespace trelmix::apps {

/// A transparent bitmap to draw on in points. Any thread, one at a time.
class Sheet {
public:
    /// Points, and pixels per point; what does not fit a bitmap gives no image.
    Sheet(double width, double height, double scale);
    ~Sheet();
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    cairo_t* context() const { return _context; }
    /// What has been drawn; empty when there was no memory for it.
    std::shared_ptr<const UIImage> image() const;

    /// An outline with its top left corner at the origin.
    void roundedRectangle(double width, double height, double radius) const;
    /// The programs' font; points.
    void chooseFont(double size) const;
    double widthOf(const std::string& text) const;
    /// Breaks at blanks, in the font chosen; a longer word stays whole.
    std::vector<std::string> brokenIntoLines(const std::string& text, double maximumWidth) const;

private:
    double _scale;
    cairo_surface_t* _surface;
    cairo_t* _context;
};

} // namespace trelmix::apps
