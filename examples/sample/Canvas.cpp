#include "Canvas.h"

namespace trelmix::sample {

void setInk(cairo_t* cr, Ink ink) {
    const auto part = [&](int shift) { return ((ink.rgb >> shift) & 0xFF) / 255.0; };
    cairo_set_source_rgba(cr, part(16), part(8), part(0), ink.alpha);
}

void trace(cairo_t* cr, const Path& path, bool closed) {
    cairo_new_sub_path(cr);
    for (const Pt p : path) {
        cairo_line_to(cr, p.x, p.y);
    }
    if (closed) {
        cairo_close_path(cr);
    }
}

void fill(cairo_t* cr, const Path& outline, Ink ink) {
    cairo_new_path(cr);
    trace(cr, outline, true);
    setInk(cr, ink);
    cairo_fill(cr);
}

void stroke(cairo_t* cr, const Path& path, bool closed, Ink ink, double width, bool butt) {
    cairo_new_path(cr);
    trace(cr, path, closed);
    setInk(cr, ink);
    cairo_set_line_width(cr, width);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cr, butt ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
}

void disc(cairo_t* cr, Pt centre, double radius, Ink ink) {
    cairo_new_path(cr);
    cairo_arc(cr, centre.x, centre.y, radius, 0, 2 * std::numbers::pi);
    setInk(cr, ink);
    cairo_fill(cr);
}

void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius) {
    constexpr double kQuarter = std::numbers::pi / 2;
    const double r = std::min({radius, width / 2, height / 2});
    cairo_new_path(cr);
    cairo_arc(cr, x + width - r, y + r, r, -kQuarter, 0);
    cairo_arc(cr, x + width - r, y + height - r, r, 0, kQuarter);
    cairo_arc(cr, x + r, y + height - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(cr, x + r, y + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cr);
}

void setFont(cairo_t* cr, double size, Weight weight, Slant slant) {
    cairo_select_font_face(cr, "DejaVu Sans",
                           slant == Slant::Italic ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
                           weight == Weight::Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, size);
    const std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)> options(
        cairo_font_options_create(), &cairo_font_options_destroy);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_set_font_options(cr, options.get());
}

double textWidth(cairo_t* cr, const std::string& text) {
    cairo_text_extents_t extents;
    cairo_text_extents(cr, text.c_str(), &extents);
    return extents.x_advance;
}

void centredText(cairo_t* cr, const std::string& text, Pt centre, Ink ink) {
    cairo_font_extents_t font;
    cairo_font_extents(cr, &font);
    setInk(cr, ink);
    cairo_move_to(cr, centre.x - textWidth(cr, text) / 2, centre.y + (font.ascent - font.descent) * 0.42);
    cairo_show_text(cr, text.c_str());
}

} // namespace trelmix::sample
