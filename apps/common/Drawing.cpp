#include "common/Drawing.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <cstring>
#include <numbers>

namespace trelmix::apps {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTextSize = 10;
constexpr double kLineHeight = 13;
constexpr double kPadding = 4;
constexpr double kMargin = 4;

/// A bitmap to draw on in points.
class Sheet {
public:
    Sheet(double width, double height, double scale)
        : _scale(scale),
          _surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels(width), pixels(height))),
          _context(cairo_create(_surface)) {
        cairo_scale(_context, scale, scale);
    }
    ~Sheet() {
        cairo_destroy(_context);
        cairo_surface_destroy(_surface);
    }
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    cairo_t* context() const { return _context; }

    std::shared_ptr<const UIImage> image() const {
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

private:
    int pixels(double points) const { return static_cast<int>(std::ceil(points * _scale)); }

    double _scale;
    cairo_surface_t* _surface;
    cairo_t* _context;
};

void chooseFont(cairo_t* context) {
    cairo_select_font_face(context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, kTextSize);
}

double widthOf(cairo_t* context, const std::string& text) {
    cairo_text_extents_t extents;
    cairo_text_extents(context, text.c_str(), &extents);
    return extents.x_advance;
}

std::vector<std::string> brokenIntoLines(cairo_t* context, const std::string& text, double maximumWidth) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string word = text.substr(start, end - start);
        const std::string longer = line.empty() ? word : line + " " + word;
        if (!line.empty() && widthOf(context, longer) > maximumWidth) {
            lines.push_back(line);
            line = word;
        } else {
            line = longer;
        }
        start = end + 1;
    }
    if (!line.empty()) {
        lines.push_back(line);
    }
    return lines;
}

void roundedRectangle(cairo_t* context, double width, double height, double radius) {
    cairo_new_sub_path(context);
    cairo_arc(context, width - radius, radius, radius, -kPi / 2, 0);
    cairo_arc(context, width - radius, height - radius, radius, 0, kPi / 2);
    cairo_arc(context, radius, height - radius, radius, kPi / 2, kPi);
    cairo_arc(context, radius, radius, radius, kPi, 3 * kPi / 2);
    cairo_close_path(context);
}

} // namespace

std::shared_ptr<const UIImage> pinImage(UIColor color) {
    const UIColor fill = color.limited();
    const Sheet sheet(24, 32, 2);
    cairo_t* context = sheet.context();
    // A drop: three quarters of a circle, and two curves that meet at the tip.
    cairo_move_to(context, 12, 31.5);
    cairo_curve_to(context, 12, 25, 2, 20, 2, 12);
    cairo_arc(context, 12, 12, 10, kPi, 2 * kPi);
    cairo_curve_to(context, 22, 20, 12, 25, 12, 31.5);
    cairo_close_path(context);
    cairo_set_source_rgba(context, fill.red, fill.green, fill.blue, fill.alpha);
    cairo_fill_preserve(context);
    cairo_set_source_rgba(context, 0, 0, 0, 0.45 * fill.alpha);
    cairo_set_line_width(context, 1);
    cairo_stroke(context);
    cairo_arc(context, 12, 12, 4, 0, 2 * kPi);
    cairo_set_source_rgba(context, 1, 1, 1, 0.9 * fill.alpha);
    cairo_fill(context);
    return sheet.image();
}

std::shared_ptr<const UIImage> attributionImage(const std::string& text, double scale, double maximumWidth) {
    const Sheet measure(1, 1, scale);
    chooseFont(measure.context());
    const auto lines = brokenIntoLines(measure.context(), text, maximumWidth - 2 * kPadding);
    double width = 0;
    for (const auto& line : lines) {
        width = std::max(width, widthOf(measure.context(), line));
    }
    width = std::min(std::ceil(width + 2 * kPadding), std::floor(maximumWidth));
    const double height = kLineHeight * static_cast<double>(lines.size()) + kPadding;
    if (lines.empty() || !(width >= 1)) {
        return nullptr;
    }
    const Sheet sheet(width, height, scale);
    cairo_t* context = sheet.context();
    roundedRectangle(context, width, height, 3);
    cairo_set_source_rgba(context, 1, 1, 1, 0.75);
    cairo_fill(context);
    chooseFont(context);
    cairo_set_source_rgb(context, 0.2, 0.2, 0.2);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        cairo_move_to(context, kPadding, kLineHeight * static_cast<double>(i + 1) - 1);
        cairo_show_text(context, lines[i].c_str());
    }
    return sheet.image();
}

std::shared_ptr<const UIImage> withAttribution(const std::shared_ptr<const UIImage>& picture,
                                               const std::shared_ptr<const UIImage>& attribution) {
    if (!picture || !attribution) {
        return picture;
    }
    const auto below = picture->pixels();
    std::vector<std::uint8_t> pixels(below.begin(), below.end());
    const int margin = static_cast<int>(std::lround(kMargin * picture->scale()));
    const int left = picture->pixelWidth() - margin - attribution->pixelWidth();
    const int top = picture->pixelHeight() - margin - attribution->pixelHeight();
    const auto above = attribution->pixels();
    for (int y = std::max(0, -top); y < attribution->pixelHeight() && top + y < picture->pixelHeight(); ++y) {
        for (int x = std::max(0, -left); x < attribution->pixelWidth() && left + x < picture->pixelWidth();
             ++x) {
            const auto from =
                (static_cast<std::size_t>(y) * static_cast<std::size_t>(attribution->pixelWidth()) +
                 static_cast<std::size_t>(x)) *
                4;
            const auto to =
                (static_cast<std::size_t>(top + y) * static_cast<std::size_t>(picture->pixelWidth()) +
                 static_cast<std::size_t>(left + x)) *
                4;
            const unsigned through = 255U - above[from + 3];
            for (std::size_t channel = 0; channel < 4; ++channel) {
                pixels[to + channel] = static_cast<std::uint8_t>(
                    std::min(255U, above[from + channel] + (pixels[to + channel] * through + 127U) / 255U));
            }
        }
    }
    return UIImage::withPixels(picture->pixelWidth(), picture->pixelHeight(), std::move(pixels),
                               picture->scale());
}

} // namespace trelmix::apps
