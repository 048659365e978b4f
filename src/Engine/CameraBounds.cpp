#include "Engine/CameraBounds.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

WorldMapPoint nearestPointInBounds(WorldMapPoint target, WorldMapPoint northEast, WorldMapPoint southWest) {
    for (const double edge : {northEast.x, northEast.y, southWest.x, southWest.y}) {
        if (!std::isfinite(edge)) {
            return target;
        }
    }
    const auto [west, east] = std::minmax(southWest.x, northEast.x);
    const auto [north, south] = std::minmax(northEast.y, southWest.y);
    return {std::clamp(target.x, west, east), std::clamp(target.y, north, south)};
}

} // namespace trelmix
