/// @file
/// The rooms of the ship's decks: one list for the plans and for the cut in the side elevation.
#pragma once

#include <string>
#include <vector>

namespace trelmix::sample {

enum class RoomKind {
    Cabin,
    Crew,
    Food,
    Galley,
    Lounge,
    Theatre,
    Shop,
    Technical,
    Stairs,
    Pool,
    Spa,
    Bridge,
    Planks
};

/// A rectangle on one deck, metres forward and starboard of the middle of the ship; the hull cuts it off.
struct Room {
    RoomKind kind;
    double aft;
    double port;
    double fore;
    double starboard;
    std::string label;
};

/// The rooms of a deck, in the order in which they are painted. Level 1 to 5.
std::vector<Room> roomsOfDeck(int level);
/// Stairs and lifts that go through all decks: metres forward of midships.
inline constexpr double kStairs[] = {-52, -4, 32};

} // namespace trelmix::sample
