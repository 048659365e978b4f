/// @file
/// A Cairo picture with the few drawing steps that every painter here shares.
#pragma once

#include "Shapes.h"

#include <cairo.h>
#include <cstdint>
#include <memory>
#include <string>

namespace trelmix::sample {

/// A colour as 0xRRGGBB with an opacity of 0 to 1.
struct Ink {
    std::uint32_t rgb = 0;
    double alpha = 1;
};

enum class Weight { Normal, Bold };
enum class Slant { Upright, Italic };

/// A bitmap and the context that draws into it.
class Canvas {
public:
    /// Transparent at first, or opaque black without `hasAlpha`.
    Canvas(int width, int height, bool hasAlpha)
        : _surface(
              cairo_image_surface_create(hasAlpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, width, height),
              &cairo_surface_destroy),
          _context(cairo_create(_surface.get()), &cairo_destroy) {}

    cairo_t* cairo() const { return _context.get(); }
    cairo_surface_t* image() const { return _surface.get(); }

    /// Writes the picture as a PNG file; false when the disk refuses.
    bool writePng(const std::string& path) const {
        cairo_surface_flush(_surface.get());
        return cairo_surface_write_to_png(_surface.get(), path.c_str()) == CAIRO_STATUS_SUCCESS;
    }

private:
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> _surface;
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> _context;
};

void setInk(cairo_t* cr, Ink ink);
/// Adds a line, closed or not, to the current path.
void trace(cairo_t* cr, const Path& path, bool closed);
void fill(cairo_t* cr, const Path& outline, Ink ink);
/// Round joins and caps, unless `butt`.
void stroke(cairo_t* cr, const Path& path, bool closed, Ink ink, double width, bool butt = false);
void disc(cairo_t* cr, Pt centre, double radius, Ink ink);
void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius);
/// DejaVu Sans with unhinted outlines, so that a label is the same whichever picture it is cut from.
void setFont(cairo_t* cr, double size, Weight weight = Weight::Normal, Slant slant = Slant::Upright);
double textWidth(cairo_t* cr, const std::string& text);
/// One line of text, its middle at `centre`.
void centredText(cairo_t* cr, const std::string& text, Pt centre, Ink ink);

} // namespace trelmix::sample
