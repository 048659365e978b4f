/// @file
/// The plans of the ship's decks.
#pragma once

#include "Canvas.h"
#include "ShipModel.h"
#include "ShipRooms.h"

namespace trelmix::sample {

/// Pixels of a deck plan for one metre.
inline constexpr int kDeckScale = 12;

/// The colours of a kind of room and of the words in it.
Ink roomInk(RoomKind kind);
Ink roomTextInk(RoomKind kind);

/// The plan of a deck, bow to the right, transparent outside: kDeckPlanLength by kDeckPlanBeam metres.
Canvas paintDeck(const Deck& deck);

} // namespace trelmix::sample
