#include "ElevationPainter.h"

#include "DeckPainter.h"

namespace trelmix::sample {

namespace {

/// Metres above the floor of the lowest deck.
constexpr double kWaterline = -2.6;
constexpr double kKeel = -7.2;

double xOf(double forward) {
    return kSideLeftOffset + (forward + kShipLength / 2) * kSideScale;
}
double yOf(double height) {
    return kSideHeight - kSideBottomOffset - height * kSideScale;
}
Pt at(double forward, double height) {
    return {xOf(forward), yOf(height)};
}

Path closedPath(std::initializer_list<Pt> places) {
    Path path;
    for (const Pt place : places) {
        path.push_back(at(place.x, place.y));
    }
    return path;
}

void verticalGradient(cairo_t* cr, double top, double bottom, Ink from, Ink to) {
    const std::unique_ptr<cairo_pattern_t, decltype(&cairo_pattern_destroy)> pattern(
        cairo_pattern_create_linear(0, top, 0, bottom), &cairo_pattern_destroy);
    const auto stop = [&](double offset, Ink ink) {
        cairo_pattern_add_color_stop_rgba(pattern.get(), offset, ((ink.rgb >> 16) & 255) / 255.0,
                                          ((ink.rgb >> 8) & 255) / 255.0, (ink.rgb & 255) / 255.0, ink.alpha);
    };
    stop(0, from);
    stop(1, to);
    cairo_set_source(cr, pattern.get());
}

void paintSkyAndSea(cairo_t* cr) {
    verticalGradient(cr, 0, yOf(kWaterline), {0xE4F0F8}, {0xFAFCFC});
    cairo_paint(cr);
    disc(cr, {1800, 92}, 34, {0xFFF3CF});
    for (const auto& cloud : {Pt{260, 90}, Pt{1030, 60}, Pt{1560, 128}}) {
        for (int i = 0; i < 4; ++i) {
            disc(cr, cloud + Pt{i * 30.0, i % 2 == 0 ? 4.0 : -8.0}, 24 - 3.0 * (i % 3), {0xFFFFFF, 0.8});
        }
    }
    cairo_new_path(cr);
    cairo_rectangle(cr, 0, yOf(kWaterline), kSideWidth, kSideHeight - yOf(kWaterline));
    verticalGradient(cr, yOf(kWaterline), kSideHeight, {0xB4D9EC}, {0x86BBD8});
    cairo_fill(cr);
}

void paintHull(cairo_t* cr) {
    cairo_new_path(cr);
    const auto to = [&](double x, double h) { cairo_line_to(cr, xOf(x), yOf(h)); };
    const auto curve = [&](Pt a, Pt b, Pt c) {
        const Pt p = at(a.x, a.y);
        const Pt q = at(b.x, b.y);
        const Pt r = at(c.x, c.y);
        cairo_curve_to(cr, p.x, p.y, q.x, q.y, r.x, r.y);
    };
    cairo_move_to(cr, xOf(-90), yOf(8.2));
    to(88, 8.2);
    curve({90, 9.2}, {90, 9.6}, {90, 9.4});
    curve({87, 4}, {82, 0}, {79.5, kWaterline});
    curve({79, -4}, {84.5, -4.2}, {84, -5.8});
    curve({83, kKeel}, {78, kKeel}, {72, kKeel});
    to(-68, kKeel);
    curve({-80, kKeel}, {-82, -3}, {-88, -1.6});
    curve({-90, -1}, {-90, 4}, {-90, 8.2});
    cairo_close_path(cr);
    const std::unique_ptr<cairo_path_t, decltype(&cairo_path_destroy)> hull(cairo_copy_path(cr),
                                                                            &cairo_path_destroy);
    setInk(cr, {0xFCFDFD});
    cairo_fill_preserve(cr);
    cairo_save(cr);
    cairo_clip(cr);
    cairo_rectangle(cr, 0, yOf(kWaterline + 0.5), kSideWidth, 400);
    setInk(cr, {0xB5564C});
    cairo_fill(cr);
    cairo_rectangle(cr, 0, yOf(kWaterline + 0.9), kSideWidth, 0.5 * kSideScale);
    setInk(cr, {0x2F5778});
    cairo_fill(cr);
    cairo_restore(cr);
    cairo_append_path(cr, hull.get());
    setInk(cr, {0x4C6880});
    cairo_set_line_width(cr, 2.2);
    cairo_stroke(cr);
}

void paintSuperstructure(cairo_t* cr) {
    constexpr Ink kWhite{0xF9FBFC};
    constexpr Ink kEdge{0x9FB2C3};
    const auto part = [&](std::initializer_list<Pt> places, Ink ink) {
        const Path outline = closedPath(places);
        fill(cr, outline, ink);
        stroke(cr, outline, true, kEdge, 1.4);
    };
    part({{-86, 8},
          {-86, 11},
          {-84.6, 14.6},
          {-79, 18.2},
          {54.5, 18.2},
          {57, 14.6},
          {63, 14.6},
          {66, 11},
          {70, 8}},
         kWhite);
    part({{-68, 18}, {-66, 24}, {-50, 24}, {-46, 18}}, kWhite);
    part({{-65, 24}, {-63.4, 33}, {-54.4, 33}, {-52.4, 24}}, {0x2F6392});
    fill(cr, closedPath({{-64.4, 27.4}, {-64, 30}, {-53.7, 30}, {-53.1, 27.4}}), {0xF4C04E});
    part({{2, 18}, {2, 21.4}, {34, 21.4}, {38, 18}}, kWhite);
    for (double x = 5; x < 33; x += 3) {
        fill(cr, closedPath({{x, 19}, {x + 2.2, 19}, {x + 2.2, 20.5}, {x, 20.5}}), {0x8FB4CC});
    }
    part({{38, 18}, {38, 22.2}, {52, 22.2}, {55.5, 19.4}, {55.5, 18}}, kWhite);
    fill(cr, closedPath({{42, 20}, {54, 20}, {52, 21.7}, {42, 21.7}}), {0x5E8FB0});
    stroke(cr, {at(44, 22.2), at(46, 35)}, false, {0x8496A6}, 5);
    stroke(cr, {at(40.5, 29), at(49.5, 29)}, false, {0x8496A6}, 3);
    stroke(cr, {at(42.5, 32), at(49, 32)}, false, {0x8496A6}, 2);
    disc(cr, at(46, 35.5), 4, {0xD8584C});
    stroke(cr, {at(84, 9), at(84, 15)}, false, {0x8496A6}, 2.5);
    stroke(cr, {at(46, 34), at(84, 15)}, false, {0xA9B7C3, 0.8}, 1);
    stroke(cr, {at(46, 34), at(-57, 33)}, false, {0xA9B7C3, 0.6}, 1);
}

void paintCutRoom(cairo_t* cr, const Deck& deck, const Room& room) {
    const double top = yOf(deck.floor + deck.ceiling) + 3;
    const double bottom = yOf(deck.floor) - 1;
    const double left = xOf(std::max(room.aft, deck.stern));
    const double right = xOf(std::min(room.fore, deck.bow));
    cairo_new_path(cr);
    cairo_rectangle(cr, left, top, right - left, bottom - top);
    setInk(cr, roomInk(room.kind));
    cairo_fill_preserve(cr);
    setInk(cr, {0x8C99A5});
    cairo_set_line_width(cr, 1);
    cairo_stroke(cr);
    if (room.kind == RoomKind::Cabin || room.kind == RoomKind::Crew) {
        roundedRectangle(cr, left + 7, top + 9, right - left - 14, 11, 3);
        setInk(cr, {0x9CC3DC});
        cairo_fill(cr);
        return;
    }
    if (room.kind == RoomKind::Stairs || room.label.empty()) {
        return;
    }
    double size = 14;
    setFont(cr, size, Weight::Bold);
    const double width = textWidth(cr, room.label);
    if (width > right - left - 8) {
        size *= (right - left - 8) / width;
        setFont(cr, size, Weight::Bold);
    }
    if (size > 7) {
        centredText(cr, room.label, {(left + right) / 2, (top + bottom) / 2}, roomTextInk(room.kind));
    }
}

/// Flights of stairs through all decks, to and fro.
void paintStairs(cairo_t* cr) {
    for (const double x : kStairs) {
        for (const Deck& deck : kDecks) {
            const bool isLast = deck.level == kDecks.back().level;
            const double left = x + 0.8;
            const double right = x + 6.2;
            if (isLast) {
                continue;
            }
            stroke(cr, {at(left, deck.floor + 0.1), at(right, deck.floor + deck.ceiling)}, false, {0x5F7F9B},
                   2.4);
        }
    }
}

/// The promenade ends in open deck before the bow.
double interiorBow(const Deck& deck) {
    return deck.level == 3 ? 68.4 : deck.bow;
}

void paintDecks(cairo_t* cr) {
    for (const Deck& deck : kDecks) {
        const double bow = interiorBow(deck);
        const double ceiling = deck.floor + deck.ceiling - 0.2;
        const Path interior = closedPath({{deck.stern, deck.floor},
                                          {bow, deck.floor},
                                          {bow + (deck.level < 3 ? 1.2 : -1.6), ceiling},
                                          {deck.stern, ceiling}});
        fill(cr, interior, {0xF6F2E9});
        cairo_save(cr);
        cairo_new_path(cr);
        trace(cr, interior, true);
        cairo_clip(cr);
        for (const Room& room : roomsOfDeck(deck.level)) {
            if (room.starboard > 3 && room.kind != RoomKind::Planks) {
                paintCutRoom(cr, deck, room);
            }
        }
        cairo_restore(cr);
        stroke(cr, interior, true, {0x6D8296}, 1.4);
        stroke(cr, {at(deck.stern, deck.floor), at(bow, deck.floor)}, false, {0x3F5870}, 3, true);
    }
    paintStairs(cr);
}

void paintDeckNumbers(cairo_t* cr) {
    for (const Deck& deck : kDecks) {
        for (const double x : {30.0, kSideWidth - 30.0}) {
            const Pt centre{x, yOf(deck.floor + deck.ceiling / 2)};
            roundedRectangle(cr, centre.x - 17, centre.y - 14, 34, 28, 9);
            setInk(cr, {0x2F6392});
            cairo_fill(cr);
            setFont(cr, 17, Weight::Bold);
            centredText(cr, std::to_string(deck.level), centre, {0xFFFFFF});
        }
    }
}

void paintWaves(cairo_t* cr) {
    for (int row = 0; row < 3; ++row) {
        cairo_new_path(cr);
        for (int x = 0; x <= kSideWidth; x += 6) {
            cairo_line_to(cr, x, yOf(kWaterline) + 4 + row * 17 + 2.4 * std::sin(x / 26.0 + row * 2));
        }
        setInk(cr, {0xFFFFFF, row == 0 ? 0.75 : 0.28});
        cairo_set_line_width(cr, row == 0 ? 2 : 1.5);
        cairo_stroke(cr);
    }
    cairo_new_path(cr);
    cairo_rectangle(cr, 0, yOf(kWaterline) + 4, kSideWidth, kSideHeight);
    setInk(cr, {0x8FC2DD, 0.34});
    cairo_fill(cr);
}

} // namespace

Canvas paintElevation() {
    Canvas canvas(kSideWidth, kSideHeight, true);
    cairo_t* cr = canvas.cairo();
    paintSkyAndSea(cr);
    paintHull(cr);
    paintSuperstructure(cr);
    paintDecks(cr);
    paintWaves(cr);
    paintDeckNumbers(cr);
    setFont(cr, 24, Weight::Bold, Slant::Italic);
    centredText(cr, "MS Trelmar", at(-30, 21), {0x2F6392});
    return canvas;
}

} // namespace trelmix::sample
