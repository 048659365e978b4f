#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/UIColor.h>

#include <cstdint>
#include <memory>

#include <cairo.h>

namespace trelmix {

class UIBezierPath;

struct ReleaseCairo {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};

template <class T>
using Cairo = std::unique_ptr<T, ReleaseCairo>;

/// Pixels from the origin. Cairo's own numbers wrap around a little farther out.
inline constexpr double kFarAway = 4.0e6;

/// Draws on these pixels, which have to stay; null when Cairo cannot.
Cairo<cairo_surface_t> surfaceOn(std::uint8_t* pixels, int width, int height);
void setColor(cairo_t* context, UIColor color);
/// The nearest place that Cairo can count with.
CGPoint withinReach(cairo_t* context, CGPoint point);
/// These replace the current path.
void addRect(cairo_t* context, CGRect rect);
void addPath(cairo_t* context, const UIBezierPath& path);
/// False for what has no inverse in Cairo's numbers, after which it would draw nothing ever again.
bool isInvertible(const cairo_matrix_t& matrix);
/// Applies one change unless it would leave a matrix without inverse.
void transform(cairo_t* context, const cairo_matrix_t& change);
/// Pixels per point in the direction that has the most.
double largestScale(cairo_t* context);

} // namespace trelmix
