#include "common/picture/Controls.h"

#include "common/picture/AttributionText.h"
#include "common/picture/Drawing.h"
#include "common/picture/Sheet.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <iterator>
#include <numbers>
#include <sstream>

namespace trelmix::apps {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTextSize = 12;
constexpr double kLineHeight = 17;
constexpr double kPadding = 8;
constexpr double kButton = 40;
constexpr double kBarHeight = 24;

std::vector<std::string> linesOf(const std::string& text, const Sheet& measure, double maximumWidth) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        auto parts = measure.brokenIntoLines(plainLine(line), maximumWidth);
        std::move(parts.begin(), parts.end(), std::back_inserter(lines));
    }
    return lines;
}

// Dark on a light rim, to be read on any ground.
void strokeTwice(cairo_t* context, double width) {
    cairo_set_source_rgba(context, 1, 1, 1, 0.9);
    cairo_set_line_width(context, width + 2.5);
    cairo_stroke_preserve(context);
    cairo_set_source_rgb(context, 0.15, 0.15, 0.15);
    cairo_set_line_width(context, width);
    cairo_stroke(context);
}

} // namespace

std::shared_ptr<const UIImage> labelImage(const std::string& text, double scale, double maximumWidth) {
    const Sheet measure(1, 1, scale);
    measure.chooseFont(kTextSize);
    const auto lines = linesOf(text, measure, maximumWidth - 2 * kPadding);
    double width = 0;
    for (const auto& line : lines) {
        width = std::max(width, measure.widthOf(line));
    }
    width = std::min(std::ceil(width + 2 * kPadding), std::floor(maximumWidth));
    if (lines.empty() || !(width >= 1)) {
        return nullptr;
    }
    const double height = kLineHeight * static_cast<double>(lines.size()) + kPadding;
    const Sheet sheet(width, height, scale);
    cairo_t* context = sheet.context();
    sheet.roundedRectangle(width, height, 6);
    cairo_set_source_rgba(context, 0.1, 0.12, 0.15, 0.82);
    cairo_fill(context);
    sheet.chooseFont(kTextSize);
    cairo_set_source_rgb(context, 1, 1, 1);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        cairo_move_to(context, kPadding, kLineHeight * static_cast<double>(i + 1));
        cairo_show_text(context, lines[i].c_str());
    }
    return sheet.image();
}

std::shared_ptr<const UIImage> northArrowImage(double rotation, double scale) {
    const Sheet sheet(kButton, kButton, scale);
    cairo_t* context = sheet.context();
    cairo_translate(context, kButton / 2, kButton / 2);
    cairo_arc(context, 0, 0, kButton / 2 - 1, 0, 2 * kPi);
    cairo_set_source_rgba(context, 1, 1, 1, 0.88);
    cairo_fill_preserve(context);
    cairo_set_source_rgba(context, 0, 0, 0, 0.35);
    cairo_set_line_width(context, 1);
    cairo_stroke(context);
    cairo_rotate(context, -rotation * kPi / 180);
    const auto needle = [context](double tip, double red, double green, double blue) {
        cairo_move_to(context, 0, tip);
        cairo_line_to(context, 5.5, 0);
        cairo_line_to(context, -5.5, 0);
        cairo_close_path(context);
        cairo_set_source_rgb(context, red, green, blue);
        cairo_fill(context);
    };
    needle(-14, 0.83, 0.18, 0.16);
    needle(14, 0.55, 0.58, 0.62);
    return sheet.image();
}

ScaleBar scaleBarFor(double metresPerPoint, double maximumLength) {
    if (!(metresPerPoint > 0) || !std::isfinite(metresPerPoint) || !(maximumLength >= 1)) {
        return {};
    }
    const double longest = metresPerPoint * maximumLength;
    const double power = std::pow(10, std::floor(std::log10(longest)));
    const double times = longest >= 5 * power ? 5 : longest >= 2 * power ? 2 : 1;
    const double metres = times * power;
    std::ostringstream text;
    text << (metres >= 1000 ? metres / 1000
             : metres >= 1  ? metres
                            : metres * 100)
         << (metres >= 1000 ? " km"
             : metres >= 1  ? " m"
                            : " cm");
    return {metres / metresPerPoint, text.str()};
}

std::shared_ptr<const UIImage> scaleBarImage(const ScaleBar& bar, double scale) {
    if (!(bar.length >= 1)) {
        return nullptr;
    }
    constexpr double kEdge = 2;
    const Sheet measure(1, 1, scale);
    measure.chooseFont(kTextSize);
    const double textWidth = measure.widthOf(bar.text);
    const Sheet sheet(std::max(bar.length, textWidth) + 2 * kEdge, kBarHeight, scale);
    cairo_t* context = sheet.context();
    const double floor = kBarHeight - 3;
    cairo_move_to(context, kEdge, floor - 5);
    cairo_line_to(context, kEdge, floor);
    cairo_line_to(context, kEdge + bar.length, floor);
    cairo_line_to(context, kEdge + bar.length, floor - 5);
    strokeTwice(context, 1.5);
    sheet.chooseFont(kTextSize);
    cairo_move_to(context, std::max(kEdge, kEdge + (bar.length - textWidth) / 2), floor - 7);
    cairo_text_path(context, bar.text.c_str());
    cairo_set_source_rgba(context, 1, 1, 1, 0.9);
    cairo_set_line_width(context, 3);
    cairo_stroke_preserve(context);
    cairo_set_source_rgb(context, 0.15, 0.15, 0.15);
    cairo_fill(context);
    return sheet.image();
}

} // namespace trelmix::apps
