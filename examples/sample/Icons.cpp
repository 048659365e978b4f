#include "Icons.h"

#include "Canvas.h"

namespace trelmix::sample {

namespace {

/// Pins are 28 x 40 points with the tip in the middle of the lower edge; badges and dots are square.
constexpr double kPinWidth = 28;
constexpr double kPinHeight = 40;
constexpr int kPixelsPerPoint = 2;

Canvas pointsCanvas(double width, double height) {
    Canvas canvas(static_cast<int>(width) * kPixelsPerPoint, static_cast<int>(height) * kPixelsPerPoint,
                  true);
    cairo_scale(canvas.cairo(), kPixelsPerPoint, kPixelsPerPoint);
    return canvas;
}

void pinPath(cairo_t* cr, double inset) {
    const double radius = 13 - inset;
    cairo_new_path(cr);
    cairo_arc(cr, 14, 14, radius, std::numbers::pi * 0.84, std::numbers::pi * 0.16);
    cairo_curve_to(cr, 23.5 - inset, 26, 16, 31, 14, 39.4 - 1.8 * inset);
    cairo_curve_to(cr, 12, 31, 4.5 + inset, 26, 14 - radius * std::cos(0.16 * std::numbers::pi),
                   14 + radius * std::sin(0.16 * std::numbers::pi));
    cairo_close_path(cr);
}

Canvas pin(Ink ink) {
    Canvas canvas = pointsCanvas(kPinWidth, kPinHeight);
    cairo_t* cr = canvas.cairo();
    pinPath(cr, 0);
    setInk(cr, {0xFFFFFF});
    cairo_fill(cr);
    pinPath(cr, 0);
    setInk(cr, {0x22303C, 0.35});
    cairo_set_line_width(cr, 0.8);
    cairo_stroke(cr);
    pinPath(cr, 1.7);
    setInk(cr, ink);
    cairo_fill(cr);
    return canvas;
}

void ferrySign(cairo_t* cr) {
    fill(cr, {{7, 15}, {21, 15}, {18.6, 20}, {9.4, 20}}, {0xFFFFFF});
    fill(cr, {{10, 10.5}, {18, 10.5}, {19, 14}, {9, 14}}, {0xFFFFFF});
    fill(cr, {{12.6, 7}, {15.4, 7}, {15.4, 10}, {12.6, 10}}, {0xFFFFFF});
}

void cafeSign(cairo_t* cr) {
    roundedRectangle(cr, 8, 10.5, 9.5, 9, 2.4);
    setInk(cr, {0xFFFFFF});
    cairo_fill(cr);
    cairo_new_path(cr);
    cairo_arc(cr, 18, 14, 2.4, -1.4, 1.4);
    cairo_set_line_width(cr, 1.5);
    cairo_stroke(cr);
    for (const double x : {11.0, 14.5}) {
        stroke(cr, {{x, 6.4}, {x, 8.8}}, false, {0xFFFFFF}, 1.3);
    }
}

void museumSign(cairo_t* cr) {
    fill(cr, {{7, 11}, {14, 6.4}, {21, 11}}, {0xFFFFFF});
    for (const double x : {9.0, 12.9, 16.8}) {
        fill(cr, {{x, 12.2}, {x + 2.2, 12.2}, {x + 2.2, 17.8}, {x, 17.8}}, {0xFFFFFF});
    }
    fill(cr, {{7, 18.6}, {21, 18.6}, {21, 20.4}, {7, 20.4}}, {0xFFFFFF});
}

void dotSign(cairo_t* cr) {
    disc(cr, {14, 14}, 5.2, {0xFFFFFF});
}

Canvas position() {
    Canvas canvas = pointsCanvas(24, 24);
    cairo_t* cr = canvas.cairo();
    disc(cr, {12, 12}, 11.5, {0x2D7FF0, 0.22});
    disc(cr, {12, 12}, 8, {0xFFFFFF});
    disc(cr, {12, 12}, 6.2, {0x2D7FF0});
    return canvas;
}

/// A round badge with a letter, for places on board.
Canvas badge(const std::string& letter, Ink ink) {
    Canvas canvas = pointsCanvas(26, 26);
    cairo_t* cr = canvas.cairo();
    disc(cr, {13, 13}, 12.6, {0x22303C, 0.35});
    disc(cr, {13, 13}, 12.2, {0xFFFFFF});
    disc(cr, {13, 13}, 10.4, ink);
    setFont(cr, 13, Weight::Bold);
    centredText(cr, letter, {13, 13.2}, {0xFFFFFF});
    return canvas;
}

/// A flat arrow that turns with the map and points to its rotation.
Canvas arrow() {
    Canvas canvas = pointsCanvas(32, 32);
    cairo_t* cr = canvas.cairo();
    const Path outline{{16, 2}, {27, 28}, {16, 22}, {5, 28}};
    stroke(cr, outline, true, {0xFFFFFF}, 3);
    fill(cr, outline, {0xE0593F});
    return canvas;
}

} // namespace

std::string writeIcons(const std::string& folder) {
    std::string problem;
    const auto write = [&](const char* name, const Canvas& canvas) {
        const std::string path = folder + "/" + name + "@2x.png";
        if (problem.empty() && !canvas.writePng(path)) {
            problem = path + ": cannot be written";
        }
    };
    const auto writePin = [&](const char* name, Ink ink, void (*sign)(cairo_t*)) {
        const Canvas canvas = pin(ink);
        sign(canvas.cairo());
        write(name, canvas);
    };
    writePin("pin", {0xE0593F}, dotSign);
    writePin("ferry", {0x2F6FB0}, ferrySign);
    writePin("cafe", {0xB8702E}, cafeSign);
    writePin("museum", {0x7A5BA6}, museumSign);
    write("position", position());
    write("restaurant", badge("R", {0xD07A2C}));
    write("cabin", badge("C", {0x3A78AD}));
    write("pool", badge("P", {0x2AA0C0}));
    write("arrow", arrow());
    return problem;
}

} // namespace trelmix::sample
