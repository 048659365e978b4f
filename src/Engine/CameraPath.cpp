#include "Engine/CameraPath.h"

#include "Engine/CameraBounds.h"
#include "Engine/SceneUpdate.h"
#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
#include "Platform/Foundation/SceneLock.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {

namespace {

/// How deep camera changes made from inside the delegate's announcement may nest.
constexpr int kDeepestNesting = 8;
/// Seconds from the last step of a gesture to the report that the camera rests.
constexpr double kIdleDelay = 0.05;

Radians limitedViewingAngle(Radians angle) {
    constexpr Radians kHighest = CameraPath::kHighestViewingAngle;
    return std::isnan(angle.value) ? kHighest : std::clamp(angle, Radians{}, kHighest);
}

} // namespace

CameraPath::~CameraPath() {
    if (_idleTimer) {
        _idleTimer->invalidate();
    }
}

void CameraPath::initialiseProjection(Coordinate coordinate) {
    if (_projection) {
        return;
    }
    const CGSize size = _engine.frame().size;
    _projection = std::make_shared<CameraProjection>(coordinate, ScreenPoint{size.width, size.height});
    _projection->setZoomIsScale(_engine.currentBehaviour().zoomIsScale);
    _engine.layoutIfNeeded();
    _engine.sceneView()->setSceneTime(_engine.sceneView()->sceneTime() + 1.0);
}

void CameraPath::connectProjection() {
    _projection->setCameraNode(_engine.cameraNode());
    _projection->setSceneView(_engine.sceneView());
}

void CameraPath::setupProjection() {
    connectProjection();
    set(current());
}

void CameraPath::initialise(Coordinate target, float zoom) {
    _initialZoom = zoom;
    if (_projection) {
        return;
    }
    initialiseProjection(target);
    // The delegate may look at the camera when it hears of it, before the camera path has limited it.
    _projection->setMapZoom(limitedZoom(zoom));
    setupProjection();
}

void CameraPath::applyInitialZoom(float zoom) {
    _initialZoom = zoom;
    if (_projection) {
        CameraChange change = current();
        change.zoom = zoom;
        set(change);
    }
}

ZoomRange CameraPath::supportedZooms() const {
    return {_engine.currentBehaviour().zooms ? 0.0F : ZoomLimits::kSupportedMin, ZoomLimits::kSupportedMax};
}

float CameraPath::limitedZoom(float zoom) const {
    if (!_engine.currentBehaviour().zooms) {
        return ZoomLimits::sanitised(zoom);
    }
    const ZoomRange supported = supportedZooms();
    return ZoomLimits::limited(zoom, {lowestZoom(), highestZoom()}, supported);
}

void CameraPath::setHighestZoom(float zoom) {
    _highestZoom = zoom;
    if (!_engine.currentBehaviour().zooms) {
        ZoomLimits::setUserMax(zoom);
    } else if (_hasCamera) {
        set(current());
    }
}

void CameraPath::setLowestZoom(float zoom) {
    _lowestZoom = zoom;
    if (!_engine.currentBehaviour().zooms) {
        ZoomLimits::setUserMin(zoom);
    } else if (_hasCamera) {
        set(current());
    }
}

void CameraPath::behaviourChanged() {
    if (!_projection) {
        return;
    }
    _projection->setZoomIsScale(_engine.currentBehaviour().zoomIsScale);
    setUpGeoNodes(*_engine.defaultScene(), _projection);
    set(current());
}

CameraChange CameraPath::current() const {
    CameraChange change;
    change.target = _projection->cameraTargetMapPoint();
    change.rotation = _projection->mapRotation();
    change.viewingAngle = _projection->mapViewingAngle();
    change.zoom = _projection->mapZoom();
    return change;
}

void CameraPath::set(CameraChange change) {
    change.rotation = change.rotation.narrowed();
    change.viewingAngle = change.viewingAngle.narrowed();
    const bool isFinite = std::isfinite(change.target.x) && std::isfinite(change.target.y) &&
                          change.rotation.isFinite() && std::isfinite(change.zoom);
    if (!isFinite || _changeDepth >= kDeepestNesting) {
        return;
    }
    if (!_projection) {
        initialiseProjection(GeoUtils::coordinateOfScenePoint(change.target));
        connectProjection();
    }
    const WorldMapPoint target = canSetCameraToTarget(change.target);
    _projection->setCameraTarget(target, GeoUtils::coordinateOfScenePoint(target));
    if (apply(change)) {
        reportWhenAtRest(change);
    }
}

bool CameraPath::announce(bool fromGesture) {
    const std::uint64_t number = ++_changeNumber;
    if (const auto delegate = _engine.currentDelegate()) {
        ++_changeDepth;
        callOut([&] { delegate->mapViewWillMoveFromGesture(fromGesture); });
        --_changeDepth;
    }
    return number == _changeNumber;
}

bool CameraPath::apply(const CameraChange& change) {
    if (!announce(change.fromGesture)) {
        return false;
    }
    _engine.cameraNode()->removeAllActions();
    _running.reset();
    const float goalZoom = limitedZoom(change.zoom);
    // The first camera has nowhere to come from: no overlay may see the placeholder.
    const float startZoom = _hasCamera ? _projection->mapZoom() : goalZoom;
    const bool placesAtOnce = !change.animated || !_hasCamera;
    _hasCamera = true;
    const Radians rotation = shortestTurn(change.rotation, _projection->mapRotation());
    const Radians viewingAngle = limitedViewingAngle(change.viewingAngle);
    _projection->setPose(rotation, viewingAngle, goalZoom);
    auto turn = performMapEulerRotate(viewingAngle, rotation, !placesAtOnce);
    if (placesAtOnce) {
        _engine.cameraNode()->setExactPosition(_projection->exactCameraPosition());
    }
    if (change.animated) {
        runAnimation(startZoom, goalZoom, std::move(turn));
    }
    return true;
}

void CameraPath::runAnimation(float startZoom, float goalZoom, std::shared_ptr<const SCNAction> turn) {
    const Vector3d goal = _projection->exactCameraPosition();
    _projection->setMapZoom(startZoom);
    auto zoom = SCNAction::customAction(
        kDuration, [weak = std::weak_ptr(_projection), startZoom, goalZoom](SCNNode&, double elapsed) {
            if (const auto projection = weak.lock()) {
                const float t = static_cast<float>(std::clamp(elapsed / kDuration, 0.0, 1.0));
                projection->setInternalZoom(t * goalZoom + (1.0F - t) * startZoom - 1.0F);
            }
        });
    _engine.cameraNode()->runAction(
        SCNAction::group({std::move(turn), SCNAction::moveTo(goal, kDuration), std::move(zoom)}),
        [weak = _engine.weakSelf()] {
            if (const auto engine = weak.lock()) {
                engine->informDelegateAboutIdle();
            }
        });
}

void CameraPath::run(std::function<CameraPose(double elapsed)> poses, double duration, Touch touch) {
    if (!_projection || !announce(true)) {
        return;
    }
    if (_idleTimer) {
        _idleTimer->invalidate();
    }
    _engine.cameraNode()->removeAllActions();
    _running = {touch, poses(duration).zoom + 1.0F};
    auto step = [weak = _engine.weakSelf(), poses = std::move(poses)](SCNNode&, double elapsed) {
        if (const auto engine = weak.lock()) {
            engine->cameraPath().place(poses(elapsed));
        }
    };
    _engine.cameraNode()->runAction(SCNAction::customAction(duration, std::move(step)),
                                    [weak = _engine.weakSelf()] {
                                        if (const auto engine = weak.lock()) {
                                            engine->cameraPath()._running.reset();
                                            engine->informDelegateAboutIdle();
                                        }
                                    });
}

void CameraPath::touched() {
    if (_running && _running->touch == Touch::stops) {
        _running.reset();
        _engine.cameraNode()->removeAllActions();
        reportSoon();
    }
}

/// While something runs; limits have been asked before.
void CameraPath::place(const CameraPose& pose) {
    const Coordinate target = GeoUtils::coordinateOfScenePoint(pose.target);
    _projection->setCameraTarget(pose.target, target);
    _projection->setPose(pose.rotation, pose.viewingAngle, pose.zoom + 1.0F);
    _engine.cameraNode()->setExactEulerAngles({pose.viewingAngle.value, 0, pose.rotation.value});
    _engine.cameraNode()->setExactPosition(_projection->exactCameraPosition());
}

std::shared_ptr<const SCNAction> CameraPath::performMapEulerRotate(Radians viewingAngle, Radians rotation,
                                                                   bool animated) {
    if (animated) {
        return SCNAction::rotateTo(viewingAngle.value, 0, rotation.value, kDuration);
    }
    _engine.cameraNode()->setExactEulerAngles({viewingAngle.value, 0, rotation.value});
    return nullptr;
}

WorldMapPoint CameraPath::canSetCameraToTarget(WorldMapPoint target) const {
    if (!CLLocationCoordinate2DIsValid(_boundsNorthEast) ||
        !CLLocationCoordinate2DIsValid(_boundsSouthWest)) {
        return target;
    }
    return nearestPointInBounds(target, coordinateOf(_boundsNorthEast), coordinateOf(_boundsSouthWest));
}

void CameraPath::reportWhenAtRest(const CameraChange& change) {
    if (change.animated) {
        return; // the animation's completion reports
    }
    if (!change.fromGesture) {
        informDelegateAboutIdle();
        return;
    }
    reportSoon();
}

void CameraPath::reportSoon() {
    if (_idleTimer) {
        _idleTimer->invalidate();
    }
    _idleTimer = Timer::scheduledTimer(kIdleDelay, false, [weak = _engine.weakSelf()] {
        if (const auto engine = weak.lock()) {
            engine->informDelegateAboutIdle();
        }
    });
}

void CameraPath::informDelegateAboutIdle() {
    if (!_projection) {
        return;
    }
    _engine.updateOverlays();
    if (!_engine.currentDelegate()) {
        return;
    }
    DispatchQueue::main().async([weak = _engine.weakSelf()] {
        if (const auto engine = weak.lock()) {
            engine->reportIdleToDelegate();
        }
    });
}

OpenGlPoint CameraPath::normalisedOpenGlPoint(ScreenPoint displacement) const {
    if (!_projection) {
        return {0, 0};
    }
    const double rotation = _projection->mapRotation().value;
    const double metresPerPoint =
        GeoUtils::metersPerMapPoint(_projection->cameraTarget().lat, _projection->internalZoom());
    const double mapPoints = _projection->mapPointsPerMeterMax() / (1.0 / metresPerPoint) *
                             _projection->mapPointScreenPointRatio() /
                             std::cos(_projection->mapViewingAngle().value);
    const double a = std::cos(rotation) * displacement.x + std::sin(rotation) * displacement.y;
    const double b = std::sin(rotation) * displacement.x - std::cos(rotation) * displacement.y;
    return {-a * mapPoints, b * mapPoints};
}

} // namespace trelmix
