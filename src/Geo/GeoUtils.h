#pragma once

#include "Geo/Radians.h"

#include <span>

namespace trelmix {

/// The sphere and its Mercator plane; the units and the treatment of bad numbers are those of
/// TrelmixMapEngineGeoUtils, its public face.
class GeoUtils {
public:
    static Radians bearing(Coordinate from, Coordinate to);
    static Coordinate coordinate(Coordinate from, Radians withBearing, double distance);
    static double distanceBetween(Coordinate coordinate1, Coordinate coordinate2);

    static WorldMapPoint convertCoordinateToMap(Coordinate coordinate, float zoom);
    /// The inverse of the above.
    static Coordinate convertMapToCoordinate(WorldMapPoint point, float zoom);
    static double convertLatToMapY(double latitude, float zoom);
    static double convertMapYToLat(double y, float zoom);
    static double convertLongToMapX(double longitude, float zoom);
    static double convertMapXToLong(double x, float zoom);

    /// The same two at ZOOMLEVEL_MAX, the scene's zoom; the same results to the last bit.
    static WorldMapPoint scenePoint(Coordinate coordinate);
    static Coordinate coordinateOfScenePoint(WorldMapPoint point);

    static double metersPerMapPoint(double latitude, float zoom);
    static double mapPointsPerMeter(double latitude, float zoom);

    /// True strictly inside the smallest upright rectangle around the corners: not on its edge, never for
    /// fewer than two different corners.
    static bool mapPointInsideBoundingRectangle(WorldMapPoint point, std::span<const WorldMapPoint> corners);
};

} // namespace trelmix
