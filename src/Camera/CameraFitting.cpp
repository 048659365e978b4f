#include <Trelmix/CameraFitting.h>

#include "Camera/ZoomLimits.h"
#include "Geo/GeoUtils.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelmix {

namespace {

/// Share of the view that is left for the places when 5 % stay free at either side.
constexpr double kUsableShare = 0.9;
/// Map points of the scene per screen point at public zoom 23, times the view's height: twice 256 times the
/// tangent of half the field of view, 30 degrees.
constexpr double kMapPointsAtHighestZoom = 512.0 * std::numbers::inv_sqrt3;
constexpr double kWorldSize = 256.0 * ZOOMLEVEL_MAX_SCALE;

struct MapBox {
    WorldMapPoint smallest;
    WorldMapPoint largest;

    void include(WorldMapPoint point) {
        smallest = {std::min(smallest.x, point.x), std::min(smallest.y, point.y)};
        largest = {std::max(largest.x, point.x), std::max(largest.y, point.y)};
    }
    double width() const { return largest.x - smallest.x; }
    double height() const { return largest.y - smallest.y; }
    WorldMapPoint middle() const { return {(smallest.x + largest.x) / 2.0, (smallest.y + largest.y) / 2.0}; }
};

std::optional<MapBox> boxAround(std::span<const CLLocationCoordinate2D> coordinates) {
    std::optional<MapBox> box;
    for (const CLLocationCoordinate2D& coordinate : coordinates) {
        if (!CLLocationCoordinate2DIsValid(coordinate)) {
            continue;
        }
        WorldMapPoint point = GeoUtils::scenePoint(coordinateOf(coordinate));
        point.y = std::clamp(point.y, 0.0, kWorldSize);
        if (!box) {
            box = MapBox{point, point};
        }
        box->include(point);
    }
    return box;
}

float closestZoom(const MapBox& box, CGSize viewSize) {
    // Written so that what is not a number, from a view without a size, falls to the lowest zoom.
    const double ratio = kMapPointsAtHighestZoom / viewSize.height;
    const double fit = std::min(viewSize.width * ratio / box.width(), viewSize.height * ratio / box.height());
    const double zoom = static_cast<double>(ZoomLimits::kSupportedMax) + std::log2(kUsableShare * fit);
    if (!(zoom > static_cast<double>(ZoomLimits::kSupportedMin)) ||
        !(viewSize.width > 0.0 && viewSize.height > 0.0)) {
        return ZoomLimits::kSupportedMin;
    }
    if (zoom >= static_cast<double>(ZoomLimits::kSupportedMax)) {
        return ZoomLimits::kSupportedMax;
    }
    const auto narrowed = static_cast<float>(zoom);
    // Rounded down: a zoom rounded up would cut into the margin.
    return static_cast<double>(narrowed) > zoom ? std::nextafter(narrowed, 0.0F) : narrowed;
}

} // namespace

std::optional<TrelmixMapEngineCamera> cameraShowing(std::span<const CLLocationCoordinate2D> coordinates,
                                                    CGSize viewSize) {
    const std::optional<MapBox> box = boxAround(coordinates);
    if (!box) {
        return std::nullopt;
    }
    const Coordinate target = GeoUtils::coordinateOfScenePoint(box->middle());
    return TrelmixMapEngineCamera(locationOf(target), 0, 0, closestZoom(*box, viewSize));
}

} // namespace trelmix
