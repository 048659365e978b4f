/// @file
/// The cruise ship at the quay, in its own metres: x forward and y to starboard of the middle of the ship.
#pragma once

#include "GroundFrame.h"

#include <array>

namespace trelmix::sample {

inline constexpr double kShipLength = 180;
inline constexpr double kShipBeam = 26;
/// What a deck plan shows around the hull.
inline constexpr double kDeckPlanLength = 184;
inline constexpr double kDeckPlanBeam = 28;
inline constexpr double kShipHeading = 118;

/// Where a place on board lies in the town.
Pt shipPoint(double forward, double starboard);
LatLon shipCoordinate(double forward, double starboard);
/// Half the hull's width, in metres, at a distance from midships; 0 beyond the ends.
double halfBeam(double forward);
/// The hull seen from above, drawn in by `inset` metres, bow to the right.
Path hullOutline(double inset);

struct Deck {
    int level;
    const char* name;
    double floor;   ///< metres above the floor of the lowest deck
    double ceiling; ///< metres from floor to ceiling
    double stern;   ///< metres forward of midships where the deck begins
    double bow;     ///< ... and where it ends
};

/// From the lowest to the highest.
inline constexpr std::array<Deck, 5> kDecks{{{1, "Deck 1 - Crew and Stores", 0, 3.5, -86, 78},
                                             {2, "Deck 2 - Cabins", 3.5, 3.5, -88, 82},
                                             {3, "Deck 3 - Promenade", 7, 4, -88, 86},
                                             {4, "Deck 4 - Cabins and Spa", 11, 3.5, -84, 62},
                                             {5, "Deck 5 - Sun Deck", 14.5, 3.5, -78, 54}}};

/// The side elevation: image points a metre, and margins in image points.
inline constexpr double kSideScale = 11;
inline constexpr double kSideLeftOffset = 60;
inline constexpr double kSideRightOffset = 60;
inline constexpr double kSideBottomOffset = 90;
inline constexpr double kSideTopOffset = 232;
inline constexpr int kSideWidth = 2100;
inline constexpr int kSideHeight = 520;

} // namespace trelmix::sample
