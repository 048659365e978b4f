#include "Camera/CameraProjection.h"

#include "Geo/GeoUtils.h"
#include "Platform/Foundation/SceneLock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelmix {

namespace {

using std::numbers::pi;

constexpr double kLn2 = 0.6931471805599453;
constexpr double kTileSize = 256.0;
/// Internal zoom until the engine sets the real one, right after creation.
constexpr float kPlaceholderZoom = -2.0F;

bool isFinite(double a, double b) {
    return std::isfinite(a) && std::isfinite(b);
}

Coordinate soundOrigin(Coordinate target) {
    // At a pole one metre has 1e17 map points.
    const bool isSound = CLLocationCoordinate2DIsValid(locationOf(target)) && std::abs(target.lat) < 90.0;
    return isSound ? target : Coordinate{};
}

CameraStage stageAt(Coordinate origin, ScreenPoint dimensions) {
    return {GeoUtils::scenePoint(origin), GeoUtils::mapPointsPerMeter(origin.lat, ZOOMLEVEL_MAX), dimensions};
}

/// Half the Mercator ordinate of a latitude in radians, at most a quarter of the world from the equator.
double halfMercator(double latitude) {
    const double sine = std::sin(latitude * DEG_TO_RAD_CONST);
    // At the poles this is infinite, which the limits bring to the edge of the world.
    const double y = std::log((1.0 + sine) / (1.0 - sine)) * 0.5;
    return std::clamp(y, -pi, pi) * 0.5;
}

float zoomFor(double viewSize, double fraction) {
    return static_cast<float>(std::log(viewSize / kTileSize / fraction) / kLn2);
}

} // namespace

CameraProjection::CameraProjection(Coordinate target, ScreenPoint dimensions)
    : _cameraTarget(soundOrigin(target)), _stage(stageAt(_cameraTarget, dimensions)),
      _pose{_stage.initialMapPoint, _cameraTarget.lat, kPlaceholderZoom, {}, {}}, _frame(_pose, _stage),
      _mapPointScreenPointRatio(currentRatio()), _public{_frame, dimensions} {}

CameraProjection::~CameraProjection() = default;

/// An unchanged camera costs the application one load; a changed one is copied under the lock.
const CameraProjection::PublicCamera& CameraProjection::publicCamera() const {
    if (_changes.load(std::memory_order_acquire) != _publicChanges) {
        const SceneLock lock;
        _public = {_frame, _stage.mapDimensions};
        _publicChanges = _changes.load(std::memory_order_relaxed);
    }
    return _public;
}

CLLocationCoordinate2D CameraProjection::topLeftCoordinate() const {
    return worldCoordinateFor({0, 0});
}

CLLocationCoordinate2D CameraProjection::bottomLeftCoordinate() const {
    return worldCoordinateFor({0, publicCamera().size.y});
}

CLLocationCoordinate2D CameraProjection::topRightCoordinate() const {
    return worldCoordinateFor({publicCamera().size.x, 0});
}

CLLocationCoordinate2D CameraProjection::bottomRightCoordinate() const {
    return worldCoordinateFor({publicCamera().size.x, publicCamera().size.y});
}

CGPoint CameraProjection::screenCoordinateFor(CLLocationCoordinate2D coordinate) const {
    const ScreenPoint point = publicCamera().frame.project(coordinateOf(coordinate));
    return {point.x, point.y};
}

CLLocationCoordinate2D CameraProjection::worldCoordinateFor(CGPoint point) const {
    return locationOf(GeoUtils::coordinateOfScenePoint(publicCamera().frame.unproject({point.x, point.y})));
}

void CameraProjection::cameraChanged() {
    _frame = frame(_pose);
    _changes.fetch_add(1, std::memory_order_release);
}

ScreenPoint CameraProjection::screenCoordinate(Coordinate coordinate, const CameraPose& pose) const {
    return frame(pose).project(coordinate);
}

WorldMapPoint CameraProjection::worldMapPoint(ScreenPoint point, const CameraPose& pose) const {
    return frame(pose).unproject(point);
}

TrelmixMapEngineCamera CameraProjection::cameraRecord() const {
    return {locationOf(_cameraTarget), (-_pose.rotation).degrees(), _pose.viewingAngle.degrees(), mapZoom()};
}

float CameraProjection::zoomLevelToFit(Coordinate bounds1, Coordinate bounds2) const {
    constexpr float kLowest = 14.0F;
    constexpr float kHighest = 22.0F;
    const float zoom = unlimitedZoomToFit(bounds1, bounds2);
    return std::isnan(zoom) ? kLowest : std::clamp(zoom, kLowest, kHighest);
}

float CameraProjection::unlimitedZoomToFit(Coordinate bounds1, Coordinate bounds2) const {
    const double latFraction = std::abs(halfMercator(bounds1.lat) - halfMercator(bounds2.lat)) / pi;
    const double lngFraction = std::abs(bounds1.lon - bounds2.lon) / 360.0;
    const float zoomX = zoomFor(_stage.mapDimensions.x, lngFraction);
    const float zoomY = zoomFor(_stage.mapDimensions.y, latFraction);
    return std::isnan(zoomX) || zoomX < zoomY ? zoomX : zoomY;
}

void CameraProjection::setCameraTarget(WorldMapPoint mapPoint, Coordinate coordinate) {
    if (!isFinite(mapPoint.x, mapPoint.y) || !isFinite(coordinate.lat, coordinate.lon)) {
        return;
    }
    _cameraTarget = coordinate;
    _pose.target = mapPoint;
    _pose.latitude = coordinate.lat;
    cameraChanged();
}

void CameraProjection::setMapRotation(Radians rotation) {
    if (!rotation.isFinite()) {
        return;
    }
    _pose.rotation = rotation;
    cameraChanged();
}

void CameraProjection::setMapViewingAngle(Radians angle) {
    if (!angle.isFinite()) {
        return;
    }
    _pose.viewingAngle = angle;
    cameraChanged();
}

void CameraProjection::setInternalZoom(float zoom) {
    if (!std::isfinite(zoom)) {
        return;
    }
    _pose.zoom = zoom;
    cameraChanged();
}

void CameraProjection::setPose(Radians rotation, Radians viewingAngle, float mapZoom) {
    _pose.rotation = rotation;
    _pose.viewingAngle = viewingAngle;
    _pose.zoom = mapZoom - 1.0F;
    cameraChanged();
}

void CameraProjection::setZoomIsScale(bool zoomIsScale) {
    _stage.zoomIsScale = zoomIsScale;
    cameraChanged();
    _mapPointScreenPointRatio = currentRatio();
}

void CameraProjection::setMapDimensions(ScreenPoint dimensions) {
    const bool widthChanged = dimensions.x != _stage.mapDimensions.x;
    _stage.mapDimensions = dimensions;
    cameraChanged();
    if (widthChanged || !std::isfinite(_mapPointScreenPointRatio)) {
        _mapPointScreenPointRatio = currentRatio();
    }
}

double CameraProjection::currentRatio() const {
    const CameraFrame straightDown = frame({_pose.target, _pose.latitude, ZOOMLEVEL_MAX, {}, {}});
    const double width = _stage.mapDimensions.x;
    return (straightDown.unproject({width, 0}).x - straightDown.unproject({0, 0}).x) / width;
}

} // namespace trelmix
