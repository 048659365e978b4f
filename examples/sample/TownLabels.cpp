#include "TownLabels.h"

#include "Canvas.h"
#include "GroundFrame.h"

namespace trelmix::sample {

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    return lines;
}

struct OnLine {
    Pt place;
    double angle;
};

OnLine pointAlong(const Path& line, double distance) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const Pt leg = line[i + 1] - line[i];
        const double size = length(leg);
        if (distance <= size || i + 2 == line.size()) {
            return {between(line[i], line[i + 1], size > 0 ? distance / size : 0), std::atan2(leg.y, leg.x)};
        }
        distance -= size;
    }
    return {};
}

double lengthOf(const Path& line) {
    double total = 0;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        total += length(line[i + 1] - line[i]);
    }
    return total;
}

} // namespace

TownLabels::TownLabels(const TownModel& model, int zoomLevel)
    : _zoom(zoomLevel), _scale(pixelsPerMetre(zoomLevel)) {
    const Canvas measure(8, 8, true);
    for (const Place& place : model.places) {
        if (_zoom >= place.fromZoom && _zoom <= place.toZoom) {
            addPlace(measure.cairo(), place);
        }
    }
    for (const StreetKind kind : {StreetKind::Primary, StreetKind::Secondary, StreetKind::Minor,
                                  StreetKind::Pedestrian, StreetKind::Service, StreetKind::Footpath}) {
        for (const Street& street : model.streets) {
            if (street.kind == kind && !street.name.empty()) {
                addStreet(measure.cairo(), street);
            }
        }
    }
}

TownLabels::Style TownLabels::placeStyle(PlaceKind kind, int zoom) {
    const double grown = zoom >= 18 ? 1 : 0;
    switch (kind) {
    case PlaceKind::Town:
        return {19, true, false, 0x3F3A36, 0.6};
    case PlaceKind::Village:
        return {12.5, false, false, 0x57514B, 0.2};
    case PlaceKind::District:
        return {10.5 + grown, true, false, 0x8B7A6C, 1.2};
    case PlaceKind::Water:
        return {12 + 2 * grown, false, true, 0x4E8DB5, 1.0};
    case PlaceKind::Park:
        return {11.5 + grown, false, false, 0x4C8446, 0.2};
    case PlaceKind::Landmark:
        return {11 + grown, true, false, 0x7A5A4A, 0};
    case PlaceKind::Food:
        return {10.5 + grown, false, false, 0xB8682B, 0};
    case PlaceKind::Transport:
        return {11.5 + grown, true, false, 0x3B6FA0, 0};
    }
    return {};
}

void TownLabels::applyFont(cairo_t* cr, const Style& style) {
    setFont(cr, style.size, style.isBold ? Weight::Bold : Weight::Normal,
            style.isItalic ? Slant::Italic : Slant::Upright);
}

bool TownLabels::claim(Label label, const std::vector<Box>& rooms) {
    for (const Box& room : rooms) {
        for (const Box& other : _taken) {
            if (room.touches(other)) {
                return false;
            }
        }
    }
    for (const Box& room : rooms) {
        _taken.push_back(room.grownBy(3));
        label.box.add({room.left, room.top});
        label.box.add({room.right, room.bottom});
    }
    _labels.push_back(std::move(label));
    return true;
}

void TownLabels::addPlace(cairo_t* cr, const Place& place) {
    const Style style = placeStyle(place.kind, _zoom);
    applyFont(cr, style);
    if (place.angle != 0) {
        // A name that follows the quays is set along a straight line through its place.
        const double half =
            (textWidth(cr, place.text) + style.letterGap * static_cast<double>(place.text.size())) / 2;
        const Pt along = Pt{std::cos(place.angle), std::sin(place.angle)} * (half + 2);
        const Pt middle = place.place * _scale;
        addAlong(cr, {middle - along, middle + along}, 2, place.text, style);
        return;
    }
    Label label{style, {}, {}};
    std::vector<Box> rooms;
    const std::vector<std::string> lines = linesOf(place.text);
    const double lineHeight = style.size * 1.2;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        double width = 0;
        for (const char c : lines[i]) {
            width += textWidth(cr, std::string(1, c)) + style.letterGap;
        }
        const double down = (static_cast<double>(i) - static_cast<double>(lines.size() - 1) / 2) * lineHeight;
        Pt pen = place.place * _scale + Pt{-width / 2, down + style.size * 0.36};
        rooms.push_back({pen.x - 2, pen.y - style.size, pen.x + width + 2, pen.y + style.size * 0.3});
        for (const char c : lines[i]) {
            const std::string letter(1, c);
            label.glyphs.push_back({letter, pen, 0});
            pen.x += textWidth(cr, letter) + style.letterGap;
        }
    }
    claim(std::move(label), rooms);
}

void TownLabels::addStreet(cairo_t* cr, const Street& street) {
    const bool isGreat = street.kind == StreetKind::Primary || street.kind == StreetKind::Secondary;
    if (_zoom < (isGreat ? 16 : 17) || (street.kind == StreetKind::Footpath && _zoom < 18)) {
        return;
    }
    Path line;
    for (const Pt p : street.line) {
        line.push_back(p * _scale);
    }
    if (line.back().x < line.front().x) {
        std::reverse(line.begin(), line.end());
    }
    const double size = _zoom <= 16 ? 9.5 : _zoom == 17 ? 10.5 : _zoom == 18 ? 12 : 13;
    const Style style{size, false, false, isGreat ? 0x6B5A3AU : 0x6C6862U, 0.35};
    applyFont(cr, style);
    const double width =
        textWidth(cr, street.name) + style.letterGap * static_cast<double>(street.name.size());
    const double total = lengthOf(line);
    const double spacing = 420;
    double from = total < width + 60 ? (total - width) / 2 : 34;
    while (from + width + 6 < total) {
        if (addAlong(cr, line, from, street.name, style)) {
            from += width + spacing;
        } else {
            from += 37;
        }
    }
}

bool TownLabels::addAlong(cairo_t* cr, const Path& line, double from, const std::string& text,
                          const Style& style) {
    applyFont(cr, style);
    Label label{style, {}, {}};
    std::vector<Box> rooms;
    double at = from;
    double lowest = 10;
    double highest = -10;
    for (const char c : text) {
        const std::string letter(1, c);
        const double advance = textWidth(cr, letter);
        // Each letter turns about its own middle, so that bends open and close evenly.
        const OnLine middle = pointAlong(line, at + advance / 2);
        lowest = std::min(lowest, middle.angle);
        highest = std::max(highest, middle.angle);
        const Pt along{std::cos(middle.angle), std::sin(middle.angle)};
        const Pt down{-along.y, along.x};
        label.glyphs.push_back(
            {letter, middle.place - along * (advance / 2) + down * (style.size * 0.35), middle.angle});
        Box room;
        room.add(middle.place);
        rooms.push_back(room.grownBy(style.size * 0.62));
        at += advance + style.letterGap;
    }
    return highest - lowest < 0.5 && claim(std::move(label), rooms);
}

void TownLabels::paint(cairo_t* cr, std::int64_t left, std::int64_t top, int width, int height) const {
    const GlobalPixel centre = globalPixelAt(kCentre, _zoom);
    const Pt origin{static_cast<double>(left) - centre.x, static_cast<double>(top) - centre.y};
    const Box view = Box{origin.x, origin.y, origin.x + width, origin.y + height}.grownBy(12);
    cairo_save(cr);
    cairo_translate(cr, -origin.x, -origin.y);
    for (const Label& label : _labels) {
        if (!label.box.touches(view)) {
            continue;
        }
        applyFont(cr, label.style);
        cairo_new_path(cr);
        for (const Glyph& glyph : label.glyphs) {
            cairo_save(cr);
            cairo_translate(cr, glyph.place.x, glyph.place.y);
            cairo_rotate(cr, glyph.angle);
            cairo_move_to(cr, 0, 0);
            cairo_text_path(cr, glyph.text.c_str());
            cairo_restore(cr);
        }
        setInk(cr, {0xFFFFFF, 0.82});
        cairo_set_line_width(cr, 3);
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        cairo_stroke_preserve(cr);
        setInk(cr, {label.style.rgb});
        cairo_fill(cr);
    }
    cairo_restore(cr);
}

} // namespace trelmix::sample
