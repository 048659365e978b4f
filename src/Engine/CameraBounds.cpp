#include "Engine/CameraBounds.h"

#include "Geo/GeoUtils.h"

#include <algorithm>

namespace trelmix {

namespace {

WorldMapPoint cornerOnMap(Coordinate corner) {
    constexpr double kWorldSize = 256.0 * ZOOMLEVEL_MAX_SCALE;
    const WorldMapPoint point = GeoUtils::scenePoint(corner);
    return {point.x, std::clamp(point.y, 0.0, kWorldSize)};
}

} // namespace

WorldMapPoint nearestPointInBounds(WorldMapPoint target, Coordinate northEast, Coordinate southWest) {
    const WorldMapPoint a = cornerOnMap(northEast);
    const WorldMapPoint b = cornerOnMap(southWest);
    const auto [west, east] = std::minmax(a.x, b.x);
    const auto [north, south] = std::minmax(a.y, b.y);
    return {std::clamp(target.x, west, east), std::clamp(target.y, north, south)};
}

} // namespace trelmix
