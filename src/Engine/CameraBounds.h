#pragma once

#include "Geo/GeoTypes.h"

namespace trelmix {

/// The point of the rectangle between two corners that is nearest to a target: the target itself when it lies
/// inside. Map points at zoom 22, y south.
/// @param northEast,southWest valid; beyond the map's northern and southern edge, as a pole is, they lie on
/// it
WorldMapPoint nearestPointInBounds(WorldMapPoint target, Coordinate northEast, Coordinate southWest);

} // namespace trelmix
