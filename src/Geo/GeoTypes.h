#pragma once

#include <Trelmix/Platform/CLLocation.h>

namespace trelmix {

/// A geographic coordinate, degrees.
struct Coordinate {
    double lat = 0;
    double lon = 0;
    friend bool operator==(const Coordinate&, const Coordinate&) = default;
};

/// A point of the map-point plane: x east, y south, 256 * 2^zoom map points to the world. In the scene the
/// zoom is ZOOMLEVEL_MAX.
struct WorldMapPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const WorldMapPoint&, const WorldMapPoint&) = default;
};

/// A point of the engine's view in screen points, origin top left, y down; also a view's size (x width, y
/// height).
struct ScreenPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// An offset in map points at ZOOMLEVEL_MAX, x east, y south, from the scene's origin or between two map
/// points. A node at p stands at the scene position (p.x, -p.y, 0).
struct OpenGlPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const OpenGlPoint&, const OpenGlPoint&) = default;
};

/// pi / 180
inline constexpr double DEG_TO_RAD_CONST = 0.017453292519943295;
/// pi / 128: map points at zoom 0 to radians.
inline constexpr double HALF_DIM_PI_INV = 0.02454369260617026;
/// The zoom whose map points are the scene's units.
inline constexpr float ZOOMLEVEL_MAX = 22.0F;
/// 2 to the power of ZOOMLEVEL_MAX.
inline constexpr double ZOOMLEVEL_MAX_SCALE = 4194304.0;
/// Metres.
inline constexpr double EARTH_RADIUS = 6372797.6;

constexpr Coordinate coordinateOf(CLLocationCoordinate2D location) {
    return {location.latitude, location.longitude};
}
constexpr CLLocationCoordinate2D locationOf(Coordinate coordinate) {
    return CLLocationCoordinate2DMake(coordinate.lat, coordinate.lon);
}

} // namespace trelmix
