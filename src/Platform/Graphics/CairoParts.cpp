#include "Platform/Graphics/CairoParts.h"

#include "Platform/Graphics/UIBezierPath.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

namespace trelmix {

// Cairo's pixels are blue, green, red, alpha in memory; ours start with red. Nothing it does tells red from
// blue, so it draws straight on our pixels and gets every colour with the two exchanged. Text stays clear of
// sub-pixel rendering.
static_assert(std::endian::native == std::endian::little);

Cairo<cairo_surface_t> surfaceOn(std::uint8_t* pixels, int width, int height) {
    Cairo<cairo_surface_t> surface(
        cairo_image_surface_create_for_data(pixels, CAIRO_FORMAT_ARGB32, width, height, width * 4));
    return cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS ? std::move(surface) : nullptr;
}

void setColor(cairo_t* context, UIColor color) {
    const UIColor c = color.limited();
    cairo_set_source_rgba(context, c.blue, c.green, c.red, c.alpha);
}

CGPoint withinReach(cairo_t* context, CGPoint point) {
    double x = point.x;
    double y = point.y;
    cairo_user_to_device(context, &x, &y);
    if (std::abs(x) <= kFarAway && std::abs(y) <= kFarAway) {
        return point;
    }
    x = std::clamp(x, -kFarAway, kFarAway);
    y = std::clamp(y, -kFarAway, kFarAway);
    cairo_device_to_user(context, &x, &y);
    return std::isfinite(x) && std::isfinite(y) ? CGPoint{x, y} : CGPoint{};
}

void addRect(cairo_t* context, CGRect rect) {
    const double right = rect.origin.x + rect.size.width;
    const double bottom = rect.origin.y + rect.size.height;
    const CGPoint corners[] = {rect.origin, {right, rect.origin.y}, {right, bottom}, {rect.origin.x, bottom}};
    cairo_new_path(context);
    for (const CGPoint corner : corners) {
        const CGPoint place = withinReach(context, corner);
        cairo_line_to(context, place.x, place.y);
    }
    cairo_close_path(context);
}

void addPath(cairo_t* context, const UIBezierPath& path) {
    cairo_new_path(context);
    for (const UIBezierPath::Element& element : path.elements()) {
        const CGPoint place = withinReach(context, element.point);
        if (element.startsSubpath) {
            cairo_move_to(context, place.x, place.y);
        } else {
            cairo_line_to(context, place.x, place.y);
        }
        if (element.closesSubpath) {
            cairo_close_path(context);
        }
    }
}

bool isInvertible(const cairo_matrix_t& matrix) {
    constexpr double kLargest = 1e12;
    const double numbers[] = {matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0};
    return std::all_of(std::begin(numbers), std::end(numbers),
                       [](double n) { return std::abs(n) < kLargest; }) &&
           std::abs(matrix.xx * matrix.yy - matrix.xy * matrix.yx) > 1 / (kLargest * kLargest);
}

void transform(cairo_t* context, const cairo_matrix_t& change) {
    cairo_matrix_t current;
    cairo_get_matrix(context, &current);
    cairo_matrix_t result;
    cairo_matrix_multiply(&result, &change, &current);
    if (isInvertible(change) && isInvertible(result)) {
        cairo_set_matrix(context, &result);
    }
}

double largestScale(cairo_t* context) {
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    return std::max(std::hypot(matrix.xx, matrix.yx), std::hypot(matrix.xy, matrix.yy));
}

} // namespace trelmix
