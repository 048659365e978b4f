#include "common/picture/Sheet.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace trelmix::apps {

namespace {

int pixels(double points, double scale) {
    return static_cast<int>(std::clamp(std::ceil(points * scale), 1.0, 16384.0));
}

} // namespace

Sheet::Sheet(double width, double height, double scale)
    : _scale(scale),
      _surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels(width, scale), pixels(height, scale))),
      _context(cairo_create(_surface)) {
    cairo_scale(_context, scale, scale);
}

Sheet::~Sheet() {
    cairo_destroy(_context);
    cairo_surface_destroy(_surface);
}

std::shared_ptr<const UIImage> Sheet::image() const {
    cairo_surface_flush(_surface);
    const unsigned char* data = cairo_image_surface_get_data(_surface);
    const int width = cairo_image_surface_get_width(_surface);
    const int height = cairo_image_surface_get_height(_surface);
    const int stride = cairo_image_surface_get_stride(_surface);
    if (data == nullptr) {
        return nullptr;
    }
    std::vector<std::uint8_t> rgba;
    rgba.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint32_t argb = 0;
            std::memcpy(&argb, data + std::ptrdiff_t{y} * stride + std::ptrdiff_t{x} * 4, sizeof argb);
            for (const int shift : {16, 8, 0, 24}) {
                rgba.push_back(static_cast<std::uint8_t>(argb >> shift));
            }
        }
    }
    return UIImage::withPixels(width, height, std::move(rgba), _scale);
}

void Sheet::roundedRectangle(double width, double height, double radius) const {
    constexpr double kPi = std::numbers::pi;
    cairo_new_sub_path(_context);
    cairo_arc(_context, width - radius, radius, radius, -kPi / 2, 0);
    cairo_arc(_context, width - radius, height - radius, radius, 0, kPi / 2);
    cairo_arc(_context, radius, height - radius, radius, kPi / 2, kPi);
    cairo_arc(_context, radius, radius, radius, kPi, 3 * kPi / 2);
    cairo_close_path(_context);
}

void Sheet::chooseFont(double size) const {
    cairo_select_font_face(_context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(_context, size);
}

double Sheet::widthOf(const std::string& text) const {
    cairo_text_extents_t extents;
    cairo_text_extents(_context, text.c_str(), &extents);
    return extents.x_advance;
}

std::vector<std::string> Sheet::brokenIntoLines(const std::string& text, double maximumWidth) const {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string word = text.substr(start, end - start);
        std::string longer = line;
        longer.append(line.empty() ? "" : " ").append(word);
        if (!line.empty() && widthOf(longer) > maximumWidth) {
            lines.push_back(line);
            line = word;
        } else {
            line = std::move(longer);
        }
        start = end + 1;
    }
    if (!line.empty()) {
        lines.push_back(line);
    }
    return lines;
}

} // namespace trelmix::apps
