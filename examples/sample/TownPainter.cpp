#include "TownPainter.h"

#include "Canvas.h"
#include "VesselPainter.h"

namespace trelmix::sample {

namespace {

constexpr Ink kLand{0xF6F3EC};
constexpr Ink kSea{0xAFD6EB};

Ink areaInk(AreaKind kind) {
    switch (kind) {
    case AreaKind::Farmland:
        return {0xF3EFDD};
    case AreaKind::Meadow:
        return {0xE4EED3};
    case AreaKind::Forest:
        return {0xC6E0B8};
    case AreaKind::Residential:
        return {0xF0ECE6};
    case AreaKind::Industrial:
        return {0xECE8EC};
    case AreaKind::Sea:
    case AreaKind::Pond:
        return kSea;
    case AreaKind::Land:
        return {0xC9C3B8};
    case AreaKind::Beach:
        return {0xF8ECC6};
    case AreaKind::Paved:
        return {0xE9E4DC};
    case AreaKind::Square:
        return {0xF5E9DA};
    case AreaKind::Parking:
        return {0xE6E6EC};
    case AreaKind::Park:
        return {0xD2EAC4};
    case AreaKind::Pitch:
        return {0xB5DEA9};
    case AreaKind::Cemetery:
        return {0xD5E4CC};
    case AreaKind::FlowerBed:
        return {0xF0B9C8};
    }
    return kLand;
}

struct StreetStyle {
    Ink fill;
    Ink casing;
    double leastPixels;
};

StreetStyle streetStyle(StreetKind kind) {
    switch (kind) {
    case StreetKind::Primary:
        return {{0xFFDF9E}, {0xE2B866}, 3.6};
    case StreetKind::Secondary:
        return {{0xFFF2C2}, {0xDFCB8D}, 2.6};
    case StreetKind::Minor:
        return {{0xFFFFFF}, {0xD6D0C5}, 1.5};
    case StreetKind::Service:
        return {{0xFFFFFF}, {0xDAD6CE}, 0.8};
    case StreetKind::Pedestrian:
        return {{0xFBF4EC}, {0xD9CDBF}, 1.2};
    case StreetKind::Footpath:
        return {{0xFFFFFF}, {0xC9A77C}, 0.6};
    }
    return {};
}

Ink buildingInk(const Building& building) {
    constexpr std::uint32_t kHouse[] = {0xEADFD1, 0xE8D8C8, 0xEDE4D8, 0xE6DCD2};
    constexpr std::uint32_t kTerrace[] = {0xE5D3C1, 0xE9D9C4, 0xE3CDBD, 0xEADCCB};
    constexpr std::uint32_t kPublic[] = {0xE9C9B4, 0xE4C0B2, 0xDDB9A8};
    constexpr std::uint32_t kIndustrial[] = {0xDCD8DC, 0xD5D3DA, 0xDEDAD6};
    constexpr std::uint32_t kTerminal[] = {0xC9D9E6, 0xD5E2EA};
    const auto tint = static_cast<std::size_t>(building.tint);
    switch (building.kind) {
    case BuildingKind::House:
        return {kHouse[tint % 4]};
    case BuildingKind::Terrace:
        return {kTerrace[tint % 4]};
    case BuildingKind::Public:
        return {kPublic[tint % 3]};
    case BuildingKind::Industrial:
        return {kIndustrial[tint % 3]};
    case BuildingKind::Terminal:
        return {kTerminal[tint % 2]};
    }
    return {};
}

Ink shaded(Ink ink, double factor) {
    const auto part = [&](int shift) {
        const double value = static_cast<double>((ink.rgb >> shift) & 0xFF) * factor;
        return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0)) << shift;
    };
    return {part(16) | part(8) | part(0), ink.alpha};
}

} // namespace

TownPainter::TownPainter(const TownModel& town, int zoomLevel)
    : _model(town), _zoom(zoomLevel), _scale(pixelsPerMetre(zoomLevel)), _labels(town, zoomLevel) {}

void TownPainter::paint(cairo_t* cr, std::int64_t left, std::int64_t top, int width, int height) const {
    const auto x = static_cast<double>(left);
    const auto y = static_cast<double>(top);
    const Pt from = groundAt({x, y}, _zoom);
    const Pt to = groundAt({x + width, y + height}, _zoom);
    Box view;
    view.add(from);
    view.add(to);
    view = view.grownBy(40 / _scale);

    cairo_save(cr);
    cairo_scale(cr, _scale, _scale);
    cairo_translate(cr, -from.x, -from.y);
    setInk(cr, kLand);
    cairo_paint(cr);
    paintAreas(cr, view);
    paintQuays(cr, view);
    paintFootpaths(cr, view);
    paintStreets(cr, view);
    paintRailways(cr, view);
    paintBoats(cr, _model, view, _scale);
    paintShip(cr, view, _scale);
    paintShadows(cr, view);
    paintBuildings(cr, view);
    paintTrees(cr, view);
    paintLighthouses(cr, _model, _scale);
    cairo_restore(cr);
    _labels.paint(cr, left, top, width, height);
}

void TownPainter::paintAreas(cairo_t* cr, const Box& view) const {
    for (const Area& area : _model.areas) {
        if (!area.box.touches(view)) {
            continue;
        }
        if (area.kind == AreaKind::Sea) {
            paintSea(cr, area, view);
            continue;
        }
        fill(cr, area.outline, areaInk(area.kind));
        if (area.kind == AreaKind::Pitch) {
            stroke(cr, area.outline, true, {0xFFFFFF, 0.8}, 1.2);
        }
        if (area.kind == AreaKind::Pond) {
            stroke(cr, area.outline, true, {0x8DBBD6}, std::max(0.5, 0.8 / _scale));
        }
        if (area.kind == AreaKind::Parking && _scale > 1.2) {
            stroke(cr, area.outline, true, {0xCFCFD8}, 0.8);
        }
        if (area.kind == AreaKind::Residential) {
            stroke(cr, area.outline, true, areaInk(area.kind), 60);
        }
    }
}

// Shallow water is lighter: broad strokes along the coast, clipped to the sea, one over the other.
void TownPainter::paintSea(cairo_t* cr, const Area& sea, const Box& view) const {
    fill(cr, sea.outline, kSea);
    cairo_save(cr);
    cairo_new_path(cr);
    trace(cr, sea.outline, true);
    cairo_clip(cr);
    // All pieces are one path: where two of them come near each other, a stroke must not count twice.
    cairo_new_path(cr);
    bool isRunning = false;
    const Box near = view.grownBy(220);
    for (std::size_t i = 1; i + 1 < sea.outline.size(); ++i) {
        Box leg;
        leg.add(sea.outline[i]);
        leg.add(sea.outline[i + 1]);
        if (!leg.touches(near)) {
            isRunning = false;
            continue;
        }
        if (!isRunning) {
            cairo_move_to(cr, sea.outline[i].x, sea.outline[i].y);
        }
        cairo_line_to(cr, sea.outline[i + 1].x, sea.outline[i + 1].y);
        isRunning = true;
    }
    setInk(cr, {0xD3EAF4, 0.36});
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    for (const double width : {190.0, 110.0, 44.0}) {
        cairo_set_line_width(cr, width);
        cairo_stroke_preserve(cr);
    }
    cairo_new_path(cr);
    cairo_restore(cr);
    stroke(cr, sea.outline, true, {0x93BFD8}, std::max(0.6, 0.9 / _scale));
}

void TownPainter::paintQuays(cairo_t* cr, const Box& view) const {
    for (const Line& edge : _model.quayEdges) {
        if (!edge.box.touches(view)) {
            continue;
        }
        stroke(cr, edge.line, false, {0xA79F92}, std::max(edge.width, 1.4 / _scale));
        stroke(cr, edge.line, false, {0xD6CFC3}, edge.width * 0.45);
    }
    for (const Line& pier : _model.piers) {
        if (!pier.box.touches(view) || (pier.width < 1 && _scale < 1)) {
            continue;
        }
        stroke(cr, pier.line, false, {0xB59F83}, pier.width + 0.5 / _scale, true);
        stroke(cr, pier.line, false, {0xE9DCC6}, std::max(0.2, pier.width - 0.7), true);
    }
}

double TownPainter::streetWidth(const Street& street) const {
    return std::max(street.width, streetStyle(street.kind).leastPixels / _scale);
}

void TownPainter::paintFootpaths(cairo_t* cr, const Box& view) const {
    if (_zoom < 16) {
        return;
    }
    for (const Street& street : _model.streets) {
        if (street.kind != StreetKind::Footpath || !street.box.touches(view)) {
            continue;
        }
        stroke(cr, street.line, false, {0xFDFAF4, 0.95}, std::max(street.width, 1.6 / _scale));
        if (_zoom < 18) {
            continue;
        }
        const double dash[] = {2.6, 2.0};
        cairo_set_dash(cr, dash, 2, 0);
        stroke(cr, street.line, false, {0xCDB48F}, 0.7, true);
        cairo_set_dash(cr, nullptr, 0, 0);
    }
}

// All casings first, then the fills from the least street to the greatest, so that crossings open into each
// other.
void TownPainter::paintStreets(cairo_t* cr, const Box& view) const {
    constexpr StreetKind kOrder[] = {StreetKind::Service, StreetKind::Pedestrian, StreetKind::Minor,
                                     StreetKind::Secondary, StreetKind::Primary};
    const double casing = _zoom < 16 ? 0.6 : 1.1;
    for (const bool isCasing : {true, false}) {
        for (const StreetKind kind : kOrder) {
            if (kind == StreetKind::Service && _zoom < 16) {
                continue;
            }
            const StreetStyle style = streetStyle(kind);
            for (const Street& street : _model.streets) {
                if (street.kind != kind || !street.box.touches(view)) {
                    continue;
                }
                const double width = streetWidth(street);
                if (isCasing) {
                    stroke(cr, street.line, false, style.casing, width + 2 * casing / _scale);
                } else {
                    stroke(cr, street.line, false, style.fill, width);
                }
            }
        }
    }
}

void TownPainter::paintRailways(cairo_t* cr, const Box& view) const {
    const auto track = [&](const Line& line, double leastPixels) {
        if (!line.box.touches(view)) {
            return;
        }
        const double width = std::max(line.width, leastPixels / _scale);
        stroke(cr, line.line, false, {0xA9A6A6}, width, true);
        const double dash[] = {_zoom < 17 ? 9 / _scale : 5.0, _zoom < 17 ? 9 / _scale : 5.0};
        cairo_set_dash(cr, dash, 2, 0);
        stroke(cr, line.line, false, {0xF7F6F4}, width * 0.55, true);
        cairo_set_dash(cr, nullptr, 0, 0);
    };
    for (const Line& line : _model.railways) {
        track(line, 2.6);
    }
    if (_zoom >= 16) {
        for (const Line& line : _model.sidings) {
            track(line, 1.4);
        }
    }
}

void TownPainter::paintShadows(cairo_t* cr, const Box& view) const {
    if (_zoom < 17) {
        return;
    }
    cairo_new_path(cr);
    for (const Building& building : _model.buildings) {
        if (!building.box.touches(view)) {
            continue;
        }
        const Pt offset{building.height * 0.16, building.height * 0.22};
        Path shadow;
        for (const Pt p : building.outline) {
            shadow.push_back(p + offset);
        }
        trace(cr, shadow, true);
    }
    setInk(cr, {0x6F6250, 0.20});
    cairo_fill(cr);
}

void TownPainter::paintBuildings(cairo_t* cr, const Box& view) const {
    if (_zoom < 16) {
        return;
    }
    for (const Building& building : _model.buildings) {
        if (!building.box.touches(view)) {
            continue;
        }
        const Ink ink = buildingInk(building);
        fill(cr, building.outline, ink);
        if (_zoom < 17) {
            continue;
        }
        if (_zoom >= 18 && building.outline.size() == 4 && building.kind != BuildingKind::Industrial) {
            // The half of a gabled roof that lies away from the light.
            const Path& o = building.outline;
            const bool isWide = length(o[1] - o[0]) >= length(o[2] - o[1]);
            const Path half = isWide ? Path{between(o[0], o[3], 0.5), between(o[1], o[2], 0.5), o[2], o[3]}
                                     : Path{between(o[0], o[1], 0.5), o[1], o[2], between(o[3], o[2], 0.5)};
            fill(cr, half, shaded(ink, 0.955));
        }
        stroke(cr, building.outline, true, shaded(ink, 0.83), std::max(0.25, 0.8 / _scale));
    }
}

void TownPainter::paintTrees(cairo_t* cr, const Box& view) const {
    if (_zoom < 17) {
        return;
    }
    constexpr std::uint32_t kCrowns[] = {0xA8D29A, 0x9CCB90, 0xB3D8A2};
    const Box reach = view.grownBy(8);
    for (const Tree& tree : _model.trees) {
        Box box;
        box.add(tree.place);
        if (!box.touches(reach)) {
            continue;
        }
        disc(cr, tree.place + Pt{0.7, 0.9}, tree.radius, {0x4D6B45, 0.16});
        const Ink crown{kCrowns[tree.tint]};
        disc(cr, tree.place, tree.radius, crown);
        if (_zoom >= 18) {
            disc(cr, tree.place - Pt{0.22, 0.26} * tree.radius, tree.radius * 0.55, shaded(crown, 1.07));
        }
    }
}

} // namespace trelmix::sample
