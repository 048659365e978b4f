/// @file
/// Pictures of the ship: a plan of every deck, and the elevation that shows the decks in a cut.
#pragma once

#include "Canvas.h"
#include "ShipModel.h"
#include "ShipRooms.h"

namespace trelmix::sample {

/// Pixels of a deck plan for one metre.
inline constexpr int kDeckScale = 12;

Ink roomInk(RoomKind kind);
Ink roomTextInk(RoomKind kind);

/// The plan of a deck, bow to the right, transparent outside: kDeckPlanLength by kDeckPlanBeam metres.
Canvas paintDeck(const Deck& deck);
/// The side elevation, bow to the right: kSideWidth by kSideHeight pixels.
Canvas paintElevation();

} // namespace trelmix::sample
