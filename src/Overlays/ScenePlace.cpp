#include "Overlays/ScenePlace.h"

#include "Engine/GeoNode.h"
#include "Geo/GeoUtils.h"
#include "Platform/Foundation/MainEntry.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Scene units; the world has 1.1e9.
constexpr double kFarthest = 1e12;

} // namespace

std::optional<OpenGlPoint> scenePlaceOf(CLLocationCoordinate2D coordinate,
                                        const CameraProjection& projection) {
    const WorldMapPoint point = GeoUtils::scenePoint(coordinateOf(coordinate));
    const WorldMapPoint origin = projection.initialMapPoint();
    const OpenGlPoint place{point.x - origin.x, point.y - origin.y};
    const bool isOnPlane = std::abs(place.x) <= kFarthest && std::abs(place.y) <= kFarthest;
    return isOnPlane ? std::optional(place) : std::nullopt;
}

CLLocationCoordinate2D coordinateAt(Vector3d scenePosition, const CameraProjection& projection) {
    const WorldMapPoint origin = projection.initialMapPoint();
    return locationOf(
        GeoUtils::coordinateOfScenePoint({scenePosition.x + origin.x, origin.y - scenePosition.y}));
}

CLLocationCoordinate2D presentedCoordinateOf(const GeoNode& node) {
    const MainEntry entry{"presentedCoordinate"};
    return entry && node.cameraProjection() ? coordinateAt(node.presentedPosition(), *node.cameraProjection())
                                            : kCLLocationCoordinate2DInvalid;
}

bool GroundPlace::moveTo(CLLocationCoordinate2D coordinate, const CameraProjection& projection) {
    const auto point =
        CLLocationCoordinate2DIsValid(coordinate) ? scenePlaceOf(coordinate, projection) : std::nullopt;
    if (point) {
        _point = point;
        _coordinate = coordinate;
    }
    return point.has_value();
}

std::string descriptionOf(const std::vector<CLLocation>& locations) {
    std::string text = "[";
    for (const CLLocation& location : locations) {
        text += (text.size() > 1 ? ", " : "") + descriptionOf(location.coordinate());
    }
    return text + "]";
}

double GroundScale::metersPerMappointMax(double latitude) {
    // At a pole a scene unit covers nothing, and everything would be infinitely large for good.
    constexpr double kHighest = 89.999;
    if (!_metersPerMappointMax || _followsLatitude) {
        const double sound = std::isfinite(latitude) ? std::clamp(latitude, -kHighest, kHighest) : 0.0;
        _metersPerMappointMax = GeoUtils::metersPerMapPoint(sound, ZOOMLEVEL_MAX);
    }
    return *_metersPerMappointMax;
}

std::optional<float> GroundScale::unitsPerScreenPoint(double ratio, double latitude, float zoom) {
    const auto units = static_cast<float>(ratio * GeoUtils::metersPerMapPoint(latitude, zoom) /
                                          metersPerMappointMax(latitude));
    return units > 0 && std::isfinite(units) ? std::optional(units) : std::nullopt;
}

} // namespace trelmix
