#include "VesselPainter.h"

#include "Canvas.h"
#include "ShipModel.h"

namespace trelmix::sample {

namespace {

Path boatOutline(const Boat& boat, double size) {
    const double c = std::cos(boat.angle);
    const double s = std::sin(boat.angle);
    constexpr double kShape[][2] = {{-0.5, -0.36}, {-0.5, 0.36}, {-0.2, 0.5}, {0.1, 0.48},
                                    {0.3, 0.34},   {0.42, 0.16}, {0.5, 0},    {0.42, -0.16},
                                    {0.3, -0.34},  {0.1, -0.48}, {-0.2, -0.5}};
    Path outline;
    for (const auto& corner : kShape) {
        const double x = corner[0] * boat.length * size;
        const double y = corner[1] * boat.beam * size;
        outline.push_back(boat.centre + Pt{x * c - y * s, x * s + y * c});
    }
    return outline;
}

Path boatPart(const Boat& boat, double from, double to, double halfWidth) {
    const double c = std::cos(boat.angle);
    const double s = std::sin(boat.angle);
    const auto at = [&](double x, double y) {
        return boat.centre +
               Pt{x * boat.length * c - y * boat.beam * s, x * boat.length * s + y * boat.beam * c};
    };
    return {at(from, -halfWidth), at(to, -halfWidth), at(to, halfWidth), at(from, halfWidth)};
}

void paintFreighter(cairo_t* cr, const Boat& boat, double scale) {
    const bool isFerry = boat.tint == 8;
    fill(cr, boatOutline(boat, 1), {isFerry ? 0xFDFDFCU : 0x8E5B55U});
    stroke(cr, boatOutline(boat, 1), true, {0x8A8F98}, std::max(0.5, 0.9 / scale));
    if (isFerry) {
        fill(cr, boatPart(boat, -0.42, 0.36, 0.36), {0xE6EEF4});
        fill(cr, boatPart(boat, 0.1, 0.26, 0.42), {0xF9FBFC});
        fill(cr, boatPart(boat, -0.3, -0.2, 0.14), {0xE08A4E});
        return;
    }
    constexpr std::uint32_t kContainers[] = {0xD9A05B, 0x7FA6C4, 0xC97B6B, 0x9DB58A};
    for (int i = 0; i < 7; ++i) {
        fill(cr, boatPart(boat, -0.26 + i * 0.09, -0.19 + i * 0.09, 0.38), {kContainers[i % 4]});
    }
    fill(cr, boatPart(boat, -0.44, -0.32, 0.4), {0xF4F4F2});
}

} // namespace

void paintBoats(cairo_t* cr, const TownModel& model, const Box& view, double scale) {
    if (scale < 1) {
        return;
    }
    constexpr std::uint32_t kHulls[] = {0xFFFFFF, 0xF6FAFC, 0xF3EFE6, 0xE4EEF6, 0xC96F5C, 0x5F8FB4, 0x6FA58C};
    for (const Boat& boat : model.boats) {
        Box box;
        box.add(boat.centre);
        if (!box.grownBy(boat.length).touches(view)) {
            continue;
        }
        if (boat.tint >= 8) {
            paintFreighter(cr, boat, scale);
            continue;
        }
        fill(cr, boatOutline(boat, 1), {kHulls[boat.tint]});
        stroke(cr, boatOutline(boat, 1), true, {0x8CA2B3}, std::max(0.25, 0.6 / scale));
        if (scale > 2) {
            fill(cr, boatPart(boat, -0.34, 0.02, 0.26), {boat.tint < 4 ? 0xCBD8E2U : 0xF2EBDDU});
        }
    }
}

// The hull exactly as the deck plans have it, so that a plan laid over the map covers it.
void paintShip(cairo_t* cr, const Box& view, double scale) {
    const auto onGround = [](Path path) {
        for (Pt& p : path) {
            p = shipPoint(p.x, p.y);
        }
        return path;
    };
    const auto rectangle = [&](double x0, double y0, double x1, double y1) {
        return onGround({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
    };
    if (!Box::of(onGround(hullOutline(0))).touches(view)) {
        return;
    }
    Path shadow = onGround(hullOutline(0));
    for (Pt& p : shadow) {
        p = p + Pt{2.5, 3.5};
    }
    fill(cr, shadow, {0x3C5A70, 0.22});
    fill(cr, onGround(hullOutline(0)), {0xFDFDFC});
    stroke(cr, onGround(hullOutline(0)), true, {0x5D7388}, std::max(0.5, 1.1 / scale));
    fill(cr, onGround(hullOutline(1.6)), {0xE9DFCB});
    Path house = hullOutline(3);
    for (Pt& p : house) {
        p.x = std::clamp(p.x, -80.0, 56.0);
    }
    fill(cr, onGround(house), {0xF7F9FA});
    stroke(cr, onGround(house), true, {0xC3CDD6}, std::max(0.3, 0.7 / scale));
    fill(cr, rectangle(-34, -5, -10, 5), {0xD9C9A8});
    fill(cr, rectangle(-31, -3, -14, 3), {0x8CCDE6});
    fill(cr, rectangle(-64, -4, -50, 4), {0x2F5F8A});
    fill(cr, rectangle(-62, -2.4, -53, 2.4), {0xE8EEF3});
    fill(cr, rectangle(44, -12.6, 50, 12.6), {0xFFFFFF});
    stroke(cr, rectangle(44, -12.6, 50, 12.6), true, {0xB5C1CC}, std::max(0.3, 0.7 / scale));
    if (scale < 2) {
        return;
    }
    for (double x = -70; x < 36; x += 9) {
        for (const double y : {-10.8, 9.0}) {
            fill(cr, rectangle(x, y, x + 6.5, y + 1.8), {0xE79A54});
        }
    }
}

void paintLighthouses(cairo_t* cr, const TownModel& model, double scale) {
    const double size = std::max(1.0, 1.2 / scale);
    for (const bool isGreat : {true, false}) {
        const Pt place = isGreat ? model.lighthouse : model.eastLight;
        const double radius = (isGreat ? 6.5 : 4.0) * size;
        disc(cr, place + Pt{radius * 0.5, radius * 0.7}, radius, {0x3A4A58, 0.25});
        disc(cr, place, radius, {0xFFFFFF});
        disc(cr, place, radius * 0.84, {isGreat ? 0xD8584CU : 0x58A27CU});
        disc(cr, place, radius * 0.56, {0xFFFFFF});
        disc(cr, place, radius * 0.30, {0xF8C94A});
    }
}

} // namespace trelmix::sample
