#include "Geo/GeoUtils.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace trelmix {

namespace {

using std::numbers::pi;

constexpr double d = DEG_TO_RAD_CONST;
/// 128 / pi: radians to map points at zoom 0.
constexpr double kMapPointsPerRadian = 40.74366543152521;
constexpr double kQuarterPi = 0.7853981633974483;
constexpr double kWorldSize = 256.0;

double scaleOf(float zoom) {
    return std::exp2(static_cast<double>(zoom));
}

double mapX(double longitude, double scale) {
    return (longitude * d + pi) * scale * kMapPointsPerRadian;
}

double mapY(double latitude, double scale) {
    return scale * kMapPointsPerRadian * (pi - std::log(std::tan(latitude * d * 0.5 + kQuarterPi)));
}

double latitudeAt(double y, double scale) {
    return (2.0 * std::atan(std::exp(pi - (y * HALF_DIM_PI_INV) / scale)) - pi / 2.0) / d;
}

/// Steps of 180 until the longitude lies in [-180, 180], in closed form: a point near the horizon may be 1e18
/// degrees away, where subtracting 180 no longer changes anything. The remainder is exact, as the steps are
/// below 1e15.
double folded(double longitude) {
    if (longitude >= -180.0 && longitude <= 180.0) {
        return longitude;
    }
    const double rest = std::fmod(longitude, 180.0);
    if (rest == 0.0) {
        return longitude < 0.0 ? -180.0 : 180.0;
    }
    return rest;
}

double longitudeAt(double x, double scale) {
    const double longitude = (x * HALF_DIM_PI_INV) / (scale * d) - 180.0;
    // At fractional zooms the eastern edge of the world rounds to just beyond 180, which must not be folded
    // to 0.
    if (x >= 0.0 && x <= kWorldSize * scale) {
        return std::min(longitude, 180.0);
    }
    return folded(longitude);
}

double squareOfSine(double angle) {
    const double sine = std::sin(angle);
    return sine * sine;
}

} // namespace

Radians GeoUtils::bearing(Coordinate from, Coordinate to) {
    const double difference = to.lon * d - from.lon * d;
    const double y = std::sin(difference) * std::cos(to.lat * d);
    const double x = std::cos(from.lat * d) * std::sin(to.lat * d) -
                     std::sin(from.lat * d) * std::cos(to.lat * d) * std::cos(difference);
    return Radians(std::fmod(std::atan2(y, x) + 2.0 * pi, 2.0 * pi));
}

Coordinate GeoUtils::coordinate(Coordinate from, Radians withBearing, double distance) {
    const double latitude = from.lat * d;
    const double angle = distance / EARTH_RADIUS;
    const double sine = std::sin(latitude) * std::cos(angle) +
                        std::cos(latitude) * std::sin(angle) * std::cos(withBearing.value);
    // Exactly to a pole the sum rounds to just above 1.
    const double arrival = std::asin(std::clamp(sine, -1.0, 1.0));
    const double longitude =
        from.lon * d + std::atan2(std::sin(withBearing.value) * std::sin(angle) * std::cos(latitude),
                                  std::cos(angle) - std::sin(latitude) * std::sin(arrival));
    return {arrival / d, longitude / d};
}

double GeoUtils::distanceBetween(Coordinate coordinate1, Coordinate coordinate2) {
    const double haversine = squareOfSine((coordinate2.lat - coordinate1.lat) * d * 0.5) +
                             std::cos(coordinate1.lat * d) * std::cos(coordinate2.lat * d) *
                                 squareOfSine((coordinate2.lon - coordinate1.lon) * d * 0.5);
    // Between antipodes the sum rounds to just above 1.
    const double a = std::clamp(haversine, 0.0, 1.0);
    return 2.0 * std::atan2(std::sqrt(a), std::sqrt(1.0 - a)) * EARTH_RADIUS;
}

WorldMapPoint GeoUtils::convertCoordinateToMap(Coordinate coordinate, float zoom) {
    const double scale = scaleOf(zoom);
    return {mapX(coordinate.lon, scale), mapY(coordinate.lat, scale)};
}

Coordinate GeoUtils::convertMapToCoordinate(WorldMapPoint point, float zoom) {
    const double scale = scaleOf(zoom);
    return {latitudeAt(point.y, scale), longitudeAt(point.x, scale)};
}

double GeoUtils::convertLatToMapY(double latitude, float zoom) {
    return mapY(latitude, scaleOf(zoom));
}

double GeoUtils::convertMapYToLat(double y, float zoom) {
    return latitudeAt(y, scaleOf(zoom));
}

double GeoUtils::convertLongToMapX(double longitude, float zoom) {
    return mapX(longitude, scaleOf(zoom));
}

double GeoUtils::convertMapXToLong(double x, float zoom) {
    return longitudeAt(x, scaleOf(zoom));
}

WorldMapPoint GeoUtils::scenePoint(Coordinate coordinate) {
    return {mapX(coordinate.lon, ZOOMLEVEL_MAX_SCALE), mapY(coordinate.lat, ZOOMLEVEL_MAX_SCALE)};
}

Coordinate GeoUtils::coordinateOfScenePoint(WorldMapPoint point) {
    return {latitudeAt(point.y, ZOOMLEVEL_MAX_SCALE), longitudeAt(point.x, ZOOMLEVEL_MAX_SCALE)};
}

double GeoUtils::metersPerMapPoint(double latitude, float zoom) {
    return std::cos(latitude * d) * 2.0 * pi * EARTH_RADIUS / (scaleOf(zoom) * kWorldSize);
}

double GeoUtils::mapPointsPerMeter(double latitude, float zoom) {
    return 1.0 / metersPerMapPoint(latitude, zoom);
}

bool GeoUtils::mapPointInsideBoundingRectangle(WorldMapPoint point, std::span<const WorldMapPoint> corners) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    WorldMapPoint smallest{kLargest, kLargest};
    WorldMapPoint largest{-kLargest, -kLargest};
    for (const WorldMapPoint& corner : corners) {
        smallest = {std::min(smallest.x, corner.x), std::min(smallest.y, corner.y)};
        largest = {std::max(largest.x, corner.x), std::max(largest.y, corner.y)};
    }
    return smallest.x < point.x && point.x < largest.x && smallest.y < point.y && point.y < largest.y;
}

} // namespace trelmix
