#include "DeckPainter.h"

namespace trelmix::sample {

namespace {

constexpr Ink kWall{0x7C8894};
constexpr Ink kCorridor{0xF4F1EA};

Path deckOutline(const Deck& deck) {
    // The upper decks stand back from the hull's side.
    const double inset = deck.level >= 4 ? 1.2 : 0.2;
    Path outline = hullOutline(inset);
    for (Pt& p : outline) {
        p.x = std::clamp(p.x, deck.stern, deck.bow);
    }
    return outline;
}

void rectanglePath(cairo_t* cr, const Room& room) {
    cairo_new_path(cr);
    cairo_rectangle(cr, room.aft, room.port, room.fore - room.aft, room.starboard - room.port);
}

void paintPlanks(cairo_t* cr, const Room& room) {
    cairo_set_line_width(cr, 0.07);
    setInk(cr, {0xC9AE84, 0.7});
    for (double y = -13; y < 13; y += 0.55) {
        if (y < room.port || y > room.starboard) {
            continue;
        }
        cairo_move_to(cr, room.aft, y);
        cairo_line_to(cr, room.fore, y);
    }
    cairo_stroke(cr);
}

void paintStairs(cairo_t* cr, const Room& room) {
    cairo_set_line_width(cr, 0.1);
    setInk(cr, {0x7A8FA3});
    for (double x = room.aft + 0.5; x < room.aft + 4; x += 0.42) {
        cairo_move_to(cr, x, room.port + 0.3);
        cairo_line_to(cr, x, room.starboard - 0.3);
    }
    cairo_move_to(cr, room.aft + 4.2, room.port);
    cairo_line_to(cr, room.aft + 4.2, room.starboard);
    for (const double y : {-2.3, 0.0, 2.3}) {
        cairo_rectangle(cr, room.aft + 4.7, y - 0.9, 1.8, 1.8);
        cairo_move_to(cr, room.aft + 4.7, y - 0.9);
        cairo_line_to(cr, room.aft + 6.5, y + 0.9);
        cairo_move_to(cr, room.aft + 6.5, y - 0.9);
        cairo_line_to(cr, room.aft + 4.7, y + 0.9);
    }
    cairo_stroke(cr);
}

void paintBed(cairo_t* cr, const Room& room) {
    // Heads lie at the ship's side, away from the corridor.
    const bool isStarboard = room.starboard > 6;
    const double y = isStarboard ? 8.6 : -10.4;
    roundedRectangle(cr, room.aft + 0.5, y, 1.6, 1.8, 0.2);
    setInk(cr, {0xFFFFFF, 0.9});
    cairo_fill(cr);
    roundedRectangle(cr, room.aft + 0.5, isStarboard ? y + 1.3 : y, 1.6, 0.5, 0.15);
    setInk(cr, {0x9FB6C9, 0.8});
    cairo_fill(cr);
}

void paintTables(cairo_t* cr, const Room& room) {
    for (double x = room.aft + 2; x < room.fore - 1.2; x += 3) {
        for (double y = room.port + 1.7; y < room.starboard - 1; y += 2.9) {
            // The room's name stands in the middle.
            if (std::abs(y - (room.port + room.starboard) / 2) < 1.7) {
                continue;
            }
            disc(cr, {x, y}, 0.62, {0xFFFFFF, 0.95});
            for (int chair = 0; chair < 4; ++chair) {
                const double angle = (chair + 0.5) * std::numbers::pi / 2;
                disc(cr, {x + 0.95 * std::cos(angle), y + 0.95 * std::sin(angle)}, 0.24, {0xC98F5A});
            }
        }
    }
}

void paintTheatre(cairo_t* cr, const Room& room) {
    cairo_set_line_width(cr, 0.5);
    for (int row = 0; row < 7; ++row) {
        cairo_new_path(cr);
        cairo_arc(cr, room.fore - 1, 0, 6.5 + row * 2.6, std::numbers::pi - 0.62, std::numbers::pi + 0.62);
        setInk(cr, {0xB4869B, 0.75});
        if (row != 3) {
            cairo_stroke(cr);
        }
    }
    cairo_new_path(cr);
    cairo_arc(cr, room.fore, 0, 4.6, std::numbers::pi / 2, -std::numbers::pi / 2);
    setInk(cr, {0xD9BFC9});
    cairo_fill(cr);
}

void paintSunbeds(cairo_t* cr) {
    for (double x = -74; x < 38; x += 2.6) {
        if (x > -45 && x < -35) {
            continue;
        }
        for (const double y : {-10.8, 8.8}) {
            if (x < 3) {
                roundedRectangle(cr, x, y, 0.9, 2, 0.25);
                setInk(cr, {0xE99C55});
                cairo_fill(cr);
            }
        }
    }
}

void paintFurniture(cairo_t* cr, const Room& room) {
    switch (room.kind) {
    case RoomKind::Planks:
        paintPlanks(cr, room);
        break;
    case RoomKind::Stairs:
        paintStairs(cr, room);
        break;
    case RoomKind::Cabin:
    case RoomKind::Crew:
        if (!room.label.empty()) {
            paintBed(cr, room);
        }
        break;
    case RoomKind::Food:
    case RoomKind::Lounge:
        paintTables(cr, room);
        break;
    case RoomKind::Theatre:
        paintTheatre(cr, room);
        break;
    default:
        break;
    }
}

void paintRoom(cairo_t* cr, const Room& room) {
    rectanglePath(cr, room);
    setInk(cr, roomInk(room.kind));
    cairo_fill(cr);
    cairo_save(cr);
    rectanglePath(cr, room);
    cairo_clip(cr);
    paintFurniture(cr, room);
    cairo_restore(cr);
    if (room.kind == RoomKind::Planks) {
        return;
    }
    rectanglePath(cr, room);
    setInk(cr, kWall);
    cairo_set_line_width(cr, room.kind == RoomKind::Cabin || room.kind == RoomKind::Crew ? 0.14 : 0.24);
    cairo_stroke(cr);
}

void paintDoors(cairo_t* cr, const Room& room) {
    if ((room.kind != RoomKind::Cabin && room.kind != RoomKind::Crew) || room.label.empty()) {
        return;
    }
    const double wall = room.starboard > 6 ? room.port : room.starboard;
    cairo_new_path(cr);
    cairo_move_to(cr, room.aft + 2.1, wall);
    cairo_line_to(cr, room.aft + 3.0, wall);
    setInk(cr, kCorridor);
    cairo_set_line_width(cr, 0.26);
    cairo_stroke(cr);
}

void paintLabel(cairo_t* cr, const Room& room) {
    if (room.label.empty()) {
        return;
    }
    const bool isCabin = room.kind == RoomKind::Cabin || room.kind == RoomKind::Crew;
    setFont(cr, isCabin ? 0.95 : 1.75, isCabin ? Weight::Normal : Weight::Bold);
    Pt middle{(room.aft + room.fore) / 2, (room.port + room.starboard) / 2};
    if (isCabin) {
        middle.y = room.starboard > 6 ? 6.6 : -6.6;
    }
    const double width = textWidth(cr, room.label);
    const double space = room.fore - room.aft;
    if (!isCabin && width > space - 0.6) {
        setFont(cr, 1.75 * (space - 0.6) / width, Weight::Bold);
    }
    centredText(cr, room.label, middle, roomTextInk(room.kind));
}

} // namespace

Ink roomInk(RoomKind kind) {
    switch (kind) {
    case RoomKind::Cabin:
        return {0xDCE8F2};
    case RoomKind::Crew:
        return {0xE3E3EC};
    case RoomKind::Food:
        return {0xFBE3C4};
    case RoomKind::Galley:
        return {0xEDE7DC};
    case RoomKind::Lounge:
        return {0xF8EDC9};
    case RoomKind::Theatre:
        return {0xEED9E2};
    case RoomKind::Shop:
        return {0xE4DDF1};
    case RoomKind::Technical:
        return {0xDADDE0};
    case RoomKind::Stairs:
        return {0xC6D6E4};
    case RoomKind::Pool:
        return {0x8FD0EA};
    case RoomKind::Spa:
        return {0xD3ECDF};
    case RoomKind::Bridge:
        return {0xD4DDE8};
    case RoomKind::Planks:
        return {0xECD9B6};
    }
    return {};
}

Ink roomTextInk(RoomKind kind) {
    switch (kind) {
    case RoomKind::Food:
        return {0x9A5B1E};
    case RoomKind::Theatre:
        return {0x82405F};
    case RoomKind::Pool:
        return {0x1F6687};
    case RoomKind::Spa:
        return {0x2F6F52};
    case RoomKind::Shop:
        return {0x5C4691};
    case RoomKind::Cabin:
        return {0x4A6076};
    default:
        return {0x4F5660};
    }
}

Canvas paintDeck(const Deck& deck) {
    Canvas canvas(static_cast<int>(kDeckPlanLength * kDeckScale),
                  static_cast<int>(kDeckPlanBeam * kDeckScale), true);
    cairo_t* cr = canvas.cairo();
    cairo_scale(cr, kDeckScale, kDeckScale);
    cairo_translate(cr, kDeckPlanLength / 2, kDeckPlanBeam / 2);
    const Path outline = deckOutline(deck);
    const std::vector<Room> rooms = roomsOfDeck(deck.level);
    fill(cr, outline, kCorridor);
    cairo_save(cr);
    cairo_new_path(cr);
    trace(cr, outline, true);
    cairo_clip(cr);
    for (const Room& room : rooms) {
        paintRoom(cr, room);
    }
    for (const Room& room : rooms) {
        paintDoors(cr, room);
    }
    if (deck.level == 5) {
        paintSunbeds(cr);
    }
    cairo_restore(cr);
    stroke(cr, outline, true, {0x38536C}, 0.4);
    for (const Room& room : rooms) {
        paintLabel(cr, room);
    }
    return canvas;
}

} // namespace trelmix::sample
