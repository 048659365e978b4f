#pragma once

#include "Geo/GeoTypes.h"

namespace trelmix {

/// The point of the rectangle between two corners that is nearest to a target: the target itself when it lies
/// inside. Map points at zoom 22, y south. A corner without a finite place switches the bounds off.
WorldMapPoint nearestPointInBounds(WorldMapPoint target, WorldMapPoint northEast, WorldMapPoint southWest);

} // namespace trelmix
