#include "Camera/CameraFrame.h"

#include "Geo/GeoUtils.h"
#include "Platform/Math/VectorProduct.h"

#include <cmath>
#include <numbers>

namespace trelmix {

namespace {

using std::numbers::pi;

/// Cosine and sine of half the vertical field of view, 30 degrees.
constexpr double kCosHalfView = 0.8660254037844387;
constexpr double kSinHalfView = 0.49999999999999994;
/// Metres around the equator.
constexpr double kCircumference = 40041468.24594933;

double zeroIfNotANumber(double value) {
    return std::isnan(value) ? 0.0 : value;
}

Vector3d turned(const std::array<double, 9>& m, Vector3d v) {
    return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
            m[6] * v.x + m[7] * v.y + m[8] * v.z};
}

} // namespace

double CameraStage::cameraDistance(double latitude, float zoom) const {
    const double scale = std::exp2(static_cast<double>(zoom));
    if (!zoomIsScale) {
        return kCircumference * std::cos(latitude * DEG_TO_RAD_CONST) / scale;
    }
    // The scene has 2^22 tiles a side; the public zoom is one more than the internal one.
    const double mapPointsPerScreenPoint = std::exp2(21.0) / scale;
    return mapDimensions.y * 0.5 * kCosHalfView / kSinHalfView * mapPointsPerScreenPoint /
           mapPointsPerMeterMax;
}

CameraFrame::CameraFrame(const CameraPose& pose, const CameraStage& stage)
    : _initialMapPoint(stage.initialMapPoint), _target(pose.target),
      _mapPointsPerMeterMax(stage.mapPointsPerMeterMax),
      _distance(stage.cameraDistance(pose.latitude, pose.zoom)), _halfWidth(stage.mapDimensions.x * 0.5),
      _halfHeight(stage.mapDimensions.y * 0.5),
      _mapPointsPerMeter(GeoUtils::mapPointsPerMeter(pose.latitude, pose.zoom)),
      _focalLength(stage.mapDimensions.y / _mapPointsPerMeter * 0.5 * kCosHalfView / kSinHalfView),
      _height(_distance * std::cos(pose.viewingAngle.value)), _isTilted(pose.viewingAngle.value != 0.0),
      _tangentOfElevation(std::tan(pi / 2.0 - pose.viewingAngle.value)),
      _planeShift(_isTilted ? zeroIfNotANumber(-_height / _tangentOfElevation) : 0.0) {
    setRotation(pose.rotation, pose.viewingAngle);
    placeCamera(pose);
}

void CameraFrame::setRotation(Radians rotation, Radians viewingAngle) {
    const double sx = std::sin(viewingAngle.value);
    const double cx = std::cos(viewingAngle.value);
    _sinRotation = std::sin(rotation.value);
    _cosRotation = std::cos(rotation.value);
    const std::array<double, 9> aboutX{1, 0, 0, 0, cx, sx, 0, -sx, cx};
    const std::array<double, 9> aboutZ{
        _cosRotation, _sinRotation, 0, -_sinRotation, _cosRotation, 0, 0, 0, 1};
    vDSP_mmulD(aboutX.data(), 1, aboutZ.data(), 1, _rotation.data(), 1, 3, 3, 3);
    // The transpose, in doubles, and not Matrix::inverted: its single precision is worth metres on the ground
    // once the camera has travelled far from the scene's origin.
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t col = 0; col < 3; ++col) {
            _invertedRotation[row * 3 + col] = _rotation[col * 3 + row];
        }
    }
}

void CameraFrame::placeCamera(const CameraPose& pose) {
    // Not the root of distance squared minus height squared: its rounding leaves metres where there is no
    // tilt, and with fused multiplication the radicand falls below zero.
    const double horizontal = std::abs(_distance * std::sin(pose.viewingAngle.value)) * _mapPointsPerMeterMax;
    const double opposite = pose.rotation.value - pi;
    _cameraOffset = {_target.x - std::sin(opposite) * horizontal - _initialMapPoint.x,
                     _target.y - std::cos(opposite) * horizontal - _initialMapPoint.y};
    _cameraOffsetMeters = {_cameraOffset.x / _mapPointsPerMeterMax, _cameraOffset.y / _mapPointsPerMeterMax};
    _heightFromScene = _height * _mapPointsPerMeterMax / _mapPointsPerMeterMax;
    _turnedCamera = turned(_rotation, {-_cameraOffsetMeters.x, -_cameraOffsetMeters.y, _height});
}

Vector3d CameraFrame::toCamera(WorldMapPoint point) const {
    const double east = (point.x - _initialMapPoint.x) / _mapPointsPerMeterMax - _cameraOffsetMeters.x;
    const double north = -((point.y - _initialMapPoint.y) / _mapPointsPerMeterMax - _cameraOffsetMeters.y);
    return turned(_rotation, {east, north, -_heightFromScene});
}

ScreenPoint CameraFrame::project(Coordinate coordinate) const {
    return projectMapPoint(GeoUtils::scenePoint(coordinate));
}

ScreenPoint CameraFrame::projectMapPoint(WorldMapPoint point) const {
    const Vector3d w = toCamera(point);
    const double k = _focalLength / w.z;
    return {_halfWidth - w.x * k * _mapPointsPerMeter, _halfHeight + w.y * k * _mapPointsPerMeter};
}

/// Metres east and north, from the camera's place in the plane to the ground under the point, as seen with
/// the camera moved forward above its target.
OpenGlPoint CameraFrame::groundOffset(ScreenPoint point) const {
    const double bx = (point.x - _halfWidth) / _mapPointsPerMeter;
    const double by = (point.y - _halfHeight) / _mapPointsPerMeter;
    const double t = -_height / (_invertedRotation[7] * by + _invertedRotation[8] * _focalLength);
    const Vector3d ray{-bx * t, by * t, _focalLength * t};
    const Vector3d ground = turned(_invertedRotation, _turnedCamera + ray);
    const double shift = _isTilted ? _planeShift - zeroIfNotANumber(ground.z / _tangentOfElevation) : 0.0;
    return {ground.x - _sinRotation * shift, ground.y + _cosRotation * shift};
}

WorldMapPoint CameraFrame::unproject(ScreenPoint point) const {
    const OpenGlPoint offset = groundOffset(point);
    return {(offset.x + _cameraOffsetMeters.x) * _mapPointsPerMeterMax + _target.x,
            _target.y - (offset.y + _cameraOffsetMeters.y) * _mapPointsPerMeterMax};
}

bool CameraFrame::seesGround(ScreenPoint point) const {
    const double by = (point.y - _halfHeight) / _mapPointsPerMeter;
    const double descent = _invertedRotation[7] * by + _invertedRotation[8] * _focalLength;
    if (!(descent > 0.0 && _height > 0.0)) {
        return false;
    }
    const WorldMapPoint ground = unproject(point);
    return std::isfinite(ground.x) && std::isfinite(ground.y);
}

Vector3d CameraFrame::cameraPosition() const {
    return {_cameraOffset.x, -_cameraOffset.y, _height * _mapPointsPerMeterMax};
}

bool CameraFrame::isInFront(WorldMapPoint point) const {
    return toCamera(point).z < 0.0;
}

} // namespace trelmix
