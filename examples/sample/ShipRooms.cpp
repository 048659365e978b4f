#include "ShipRooms.h"

#include "ShipModel.h"

namespace trelmix::sample {

namespace {

/// The corridors run between these distances from the middle line, on both sides.
constexpr double kCorridorInner = 3.4;
constexpr double kCorridorOuter = 5.0;

/// Cabins on both sides of both corridors from `aft` to `fore`, odd numbers to starboard.
void addCabins(std::vector<Room>& rooms, int level, RoomKind kind, double aft, double fore, int& number) {
    const double width = 3.4;
    for (double x = aft; x + width <= fore + 0.01; x += width) {
        for (const double side : {1.0, -1.0}) {
            const double outer = halfBeam(x + width);
            if (outer < kCorridorOuter + 3) {
                continue;
            }
            const std::string label = std::to_string(level * 1000 + number * 2 + (side > 0 ? 1 : 0));
            const double from = side > 0 ? kCorridorOuter : -kShipBeam / 2;
            const double to = side > 0 ? kShipBeam / 2 : -kCorridorOuter;
            rooms.push_back({kind, x, from, x + width, to, label});
            rooms.push_back(
                {kind, x, side > 0 ? 0 : -kCorridorInner, x + width, side > 0 ? kCorridorInner : 0, ""});
        }
        ++number;
    }
}

void addStairs(std::vector<Room>& rooms) {
    for (const double x : kStairs) {
        rooms.push_back({RoomKind::Stairs, x, -kCorridorInner, x + 7, kCorridorInner, ""});
    }
}

std::vector<Room> crewDeck() {
    std::vector<Room> rooms{{RoomKind::Technical, -86, -13, -70, 13, "Steering Gear"},
                            {RoomKind::Technical, -70, -13, -54, -1, "Laundry"},
                            {RoomKind::Technical, -70, 1, -54, 13, "Workshop"},
                            {RoomKind::Technical, -44, -13, -8, 13, "Engine Room"},
                            {RoomKind::Galley, 4, -13, 30, -1, "Cold Stores"},
                            {RoomKind::Galley, 4, 1, 30, 13, "Provisions"},
                            {RoomKind::Food, 60, -13, 78, 13, "Crew Mess"}};
    int number = 1;
    addCabins(rooms, 1, RoomKind::Crew, 40, 59, number);
    addStairs(rooms);
    return rooms;
}

std::vector<Room> cabinDeck() {
    std::vector<Room> rooms{{RoomKind::Lounge, 3.6, -13, 12.4, 13, "Reception"},
                            {RoomKind::Lounge, -88, -13, -77, 13, "Aft Lounge"}};
    int number = 1;
    addCabins(rooms, 2, RoomKind::Cabin, -76, -53, number);
    addCabins(rooms, 2, RoomKind::Cabin, -44, -6, number);
    addCabins(rooms, 2, RoomKind::Cabin, 13, 31, number);
    addCabins(rooms, 2, RoomKind::Cabin, 40, 66, number);
    rooms.push_back({RoomKind::Technical, 68, -13, 82, 13, "Bow Thrusters"});
    addStairs(rooms);
    return rooms;
}

std::vector<Room> promenadeDeck() {
    std::vector<Room> rooms{{RoomKind::Planks, -88, -13, 88, 13, ""},
                            {RoomKind::Food, -84, -10.6, -54, 10.6, "Restaurant Meridian"},
                            {RoomKind::Galley, -44, -10.6, -32, 10.6, "Galley"},
                            {RoomKind::Food, -31, -10.6, -6, -1, "Grill Room"},
                            {RoomKind::Food, -31, 1, -6, 10.6, "Cafe Sextant"},
                            {RoomKind::Lounge, 3.6, -10.6, 12, 10.6, "Atrium"},
                            {RoomKind::Shop, 13, -10.6, 30, -1, "Boutiques"},
                            {RoomKind::Shop, 13, 1, 30, 10.6, "Gallery"},
                            {RoomKind::Theatre, 40, -10.2, 68, 10.2, "Theatre Polaris"}};
    addStairs(rooms);
    rooms.push_back({RoomKind::Planks, 69, -13, 88, 13, "Foredeck"});
    return rooms;
}

std::vector<Room> spaDeck() {
    std::vector<Room> rooms{{RoomKind::Planks, -84, -13, -68, 13, "Terrace"},
                            {RoomKind::Lounge, -67, -11, -53, 11, "Library"},
                            {RoomKind::Spa, 40, -11, 62, 11, "Spa"}};
    int number = 1;
    addCabins(rooms, 4, RoomKind::Cabin, -44, -5, number);
    addCabins(rooms, 4, RoomKind::Cabin, 4, 31, number);
    addStairs(rooms);
    return rooms;
}

std::vector<Room> sunDeck() {
    std::vector<Room> rooms{
        {RoomKind::Planks, -78, -13, 54, 13, ""},         {RoomKind::Technical, -66, -5, -54, 5, "Funnel"},
        {RoomKind::Food, -43, -10, -36, 10, "Lido Bar"},  {RoomKind::Pool, -33, -4.5, -12, 4.5, "Pool"},
        {RoomKind::Food, 6, -10.5, 30, -4, "Lido Grill"}, {RoomKind::Spa, 6, 4, 30, 10.5, "Gym"},
        {RoomKind::Bridge, 42, -12.6, 54, 12.6, "Bridge"}};
    addStairs(rooms);
    return rooms;
}

} // namespace

std::vector<Room> roomsOfDeck(int level) {
    switch (level) {
    case 1:
        return crewDeck();
    case 2:
        return cabinDeck();
    case 3:
        return promenadeDeck();
    case 4:
        return spaDeck();
    default:
        return sunDeck();
    }
}

} // namespace trelmix::sample
