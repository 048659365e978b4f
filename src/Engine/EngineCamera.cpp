// The one path by which the camera changes, from the clamped target to the report that it has come to rest.

#include "Engine/CameraBounds.h"
#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
#include "Platform/Foundation/SceneLock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelmix {

namespace {

/// How deep camera changes made from inside the delegate's announcement may nest.
constexpr int kDeepestNesting = 8;
/// Seconds from the last step of a gesture to the report that the camera rests.
constexpr double kIdleDelay = 0.05;

float limitedViewingAngle(float angle) {
    constexpr float kHighest = TrelmixMapEngineSceneView::kHighestViewingAngle;
    return std::isnan(angle) ? kHighest : std::clamp(angle, 0.0F, kHighest);
}

} // namespace

TrelmixMapEngineSceneView::CameraChange TrelmixMapEngineSceneView::currentCamera() const {
    CameraChange change;
    change.target = _cameraProjection->cameraTargetMapPoint();
    change.rotation = static_cast<float>(_cameraProjection->mapRotation());
    change.viewingAngle = static_cast<float>(_cameraProjection->mapViewingAngle());
    change.zoom = _cameraProjection->mapZoom();
    return change;
}

void TrelmixMapEngineSceneView::internalSetCamera(const CameraChange& change) {
    const SceneLock lock;
    const auto keep = self();
    const bool isFinite = std::isfinite(change.target.x) && std::isfinite(change.target.y) &&
                          std::isfinite(change.rotation) && std::isfinite(change.zoom);
    if (!isFinite || _changeDepth >= kDeepestNesting) {
        return;
    }
    if (!_cameraProjection) {
        initialiseCameraProjection(GeoUtils::coordinateOfScenePoint(change.target));
        _cameraProjection->setCameraNode(_cameraNode);
        _cameraProjection->setSceneView(_sceneView);
    }
    const WorldMapPoint target = canSetCameraToTarget(change.target);
    _cameraProjection->setCameraTarget(target, GeoUtils::coordinateOfScenePoint(target));
    if (applyCamera(change)) {
        reportWhenAtRest(change);
    }
}

bool TrelmixMapEngineSceneView::announceChange(bool fromGesture) {
    const std::uint64_t number = ++_changeNumber;
    if (const auto delegate = _delegate.lock()) {
        ++_changeDepth;
        callOut([&] { delegate->mapViewWillMoveFromGesture(fromGesture); });
        --_changeDepth;
    }
    return number == _changeNumber;
}

bool TrelmixMapEngineSceneView::applyCamera(const CameraChange& change) {
    if (!announceChange(change.fromGesture)) {
        return false;
    }
    _cameraNode->removeAllActions();
    const float goalZoom = _cameraProjection->zoomLevelSanitised(change.zoom);
    // The first camera has nowhere to come from: no overlay may see the placeholder.
    const float startZoom = _hasCamera ? _cameraProjection->mapZoom() : goalZoom;
    const bool placesAtOnce = !change.animated || !_hasCamera;
    _hasCamera = true;
    auto rotation =
        performMapEulerRotate(limitedViewingAngle(change.viewingAngle), change.rotation, !placesAtOnce);
    _cameraProjection->setMapZoom(goalZoom);
    _cameraNode->setPivot({static_cast<float>(change.offset.x), static_cast<float>(change.offset.y), 0});
    if (placesAtOnce) {
        _cameraNode->setExactPosition(_cameraProjection->exactCameraPosition());
    }
    if (change.animated) {
        runCameraAnimation(startZoom, goalZoom, std::move(rotation));
    }
    return true;
}

void TrelmixMapEngineSceneView::runCameraAnimation(float startZoom, float goalZoom,
                                                   std::shared_ptr<const SCNAction> rotation) {
    constexpr double kDuration = kTMXEngineMapAnimationDuration;
    const Vector3d goal = _cameraProjection->exactCameraPosition();
    _cameraProjection->setMapZoom(startZoom);
    auto zoom = SCNAction::customAction(
        kDuration, [weak = std::weak_ptr(_cameraProjection), startZoom, goalZoom](SCNNode&, double elapsed) {
            if (const auto projection = weak.lock()) {
                const float t = static_cast<float>(std::clamp(elapsed / kDuration, 0.0, 1.0));
                projection->setInternalZoom(t * goalZoom + (1.0F - t) * startZoom - 1.0F);
            }
        });
    _cameraNode->runAction(
        SCNAction::group({std::move(rotation), SCNAction::moveTo(goal, kDuration), std::move(zoom)}),
        [weak = std::weak_ptr(self())] {
            if (const auto engine = weak.lock()) {
                engine->informDelegateAboutIdle();
            }
        });
}

std::shared_ptr<const SCNAction> TrelmixMapEngineSceneView::performMapEulerRotate(float pitch, float roll,
                                                                                  bool animated) {
    constexpr double kTurn = 2.0 * std::numbers::pi;
    double goal = std::fmod(static_cast<double>(roll), kTurn);
    const double difference = goal - _cameraProjection->mapRotation();
    if (std::abs(difference) > std::numbers::pi) {
        goal += difference > 0 ? -kTurn : kTurn;
    }
    _cameraProjection->setMapRotation(goal);
    _cameraProjection->setMapViewingAngle(pitch);
    if (animated) {
        return SCNAction::rotateTo(pitch, 0, goal, kTMXEngineMapAnimationDuration);
    }
    _cameraNode->setExactEulerAngles({pitch, 0, goal});
    return nullptr;
}

WorldMapPoint TrelmixMapEngineSceneView::canSetCameraToTarget(WorldMapPoint target) const {
    if (!CLLocationCoordinate2DIsValid(_boundsNorthEast) ||
        !CLLocationCoordinate2DIsValid(_boundsSouthWest)) {
        return target;
    }
    return nearestPointInBounds(target, coordinateOf(_boundsNorthEast), coordinateOf(_boundsSouthWest));
}

void TrelmixMapEngineSceneView::reportWhenAtRest(const CameraChange& change) {
    if (change.animated) {
        return; // the animation's completion reports
    }
    if (!change.fromGesture) {
        informDelegateAboutIdle();
        return;
    }
    if (_cameraIdleTimer) {
        _cameraIdleTimer->invalidate();
    }
    _cameraIdleTimer = Timer::scheduledTimer(kIdleDelay, false, [weak = std::weak_ptr(self())] {
        if (const auto engine = weak.lock()) {
            engine->informDelegateAboutIdle();
        }
    });
}

void TrelmixMapEngineSceneView::informDelegateAboutIdle() {
    const SceneLock lock;
    if (!_cameraProjection) {
        return;
    }
    const auto keep = self();
    updateOverlays();
    if (!_delegate.lock()) {
        return;
    }
    DispatchQueue::main().async([weak = std::weak_ptr(keep)] {
        if (const auto engine = weak.lock()) {
            engine->reportIdleToDelegate();
        }
    });
}

void TrelmixMapEngineSceneView::reportIdleToDelegate() {
    const auto record = camera();
    if (const auto delegate = _delegate.lock(); delegate && record) {
        callOut([&] { delegate->mapViewDidChangeCamera(record); });
    }
    if (const auto delegate = _delegate.lock(); delegate && record) {
        callOut([&] { delegate->mapViewIdleAtCamera(record); });
    }
}

} // namespace trelmix
