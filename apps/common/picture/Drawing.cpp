#include "common/picture/Drawing.h"

#include "common/picture/Sheet.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <numbers>

namespace trelmix::apps {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTextSize = 10;
constexpr double kLineHeight = 13;
constexpr double kPadding = 4;
constexpr double kMargin = 4;

} // namespace

std::shared_ptr<const UIImage> pinImage() {
    const Sheet sheet(24, 32, 2);
    cairo_t* context = sheet.context();
    // A drop: three quarters of a circle, and two curves that meet at the tip.
    cairo_move_to(context, 12, 31.5);
    cairo_curve_to(context, 12, 25, 2, 20, 2, 12);
    cairo_arc(context, 12, 12, 10, kPi, 2 * kPi);
    cairo_curve_to(context, 22, 20, 12, 25, 12, 31.5);
    cairo_close_path(context);
    cairo_new_sub_path(context);
    cairo_arc(context, 12, 12, 4, 0, 2 * kPi);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_fill_preserve(context);
    cairo_set_source_rgba(context, 0, 0, 0, 0.45);
    cairo_set_line_width(context, 1);
    cairo_stroke(context);
    return sheet.image();
}

std::shared_ptr<const UIImage> attributionImage(const std::string& text, double scale, double maximumWidth) {
    const Sheet measure(1, 1, scale);
    measure.chooseFont(kTextSize);
    const auto lines = measure.brokenIntoLines(text, maximumWidth - 2 * kPadding);
    double width = 0;
    for (const auto& line : lines) {
        width = std::max(width, measure.widthOf(line));
    }
    width = std::min(std::ceil(width + 2 * kPadding), std::floor(maximumWidth));
    const double height = kLineHeight * static_cast<double>(lines.size()) + kPadding;
    if (lines.empty() || !(width >= 1)) {
        return nullptr;
    }
    const Sheet sheet(width, height, scale);
    cairo_t* context = sheet.context();
    sheet.roundedRectangle(width, height, 3);
    cairo_set_source_rgba(context, 1, 1, 1, 0.75);
    cairo_fill(context);
    sheet.chooseFont(kTextSize);
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
