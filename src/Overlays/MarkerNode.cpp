#include "Overlays/MarkerNode.h"

#include "Platform/Foundation/WakeUp.h"
#include "Platform/Scene/SCNAction.h"

#include <atomic>
#include <cmath>

namespace trelmix {

namespace {

std::atomic<double> kTMXEngineMarkerAnimationDuration{0.2};

} // namespace

void TrelmixMapMarker::setMarkerAnimationDuration(double seconds) {
    if (requireMainThread("setMarkerAnimationDuration")) {
        kTMXEngineMarkerAnimationDuration = seconds > 0 ? seconds : 0.0;
    }
}

std::shared_ptr<MarkerNode> MarkerNode::make() {
    return std::shared_ptr<MarkerNode>(new MarkerNode);
}

MarkerNode::MarkerNode() {
    setIsTappable(true);
    setLayerIndex(29);
    // Until the first update gives it a size: a marker that has no place must not show at the origin.
    setScale({0, 0, 0});
}

void MarkerNode::setCoordinate(CLLocationCoordinate2D coordinate) {
    if (const MainEntry entry{"setCoordinate"}) {
        _coordinate = coordinate;
        setCoordinate(coordinate, true, kTMXEngineMarkerAnimationDuration);
    }
}

void MarkerNode::setCoordinate(CLLocationCoordinate2D coordinate, bool animated, double duration) {
    const MainEntry entry{"setCoordinate"};
    if (!entry || !cameraProjection() || !CLLocationCoordinate2DIsValid(coordinate)) {
        return;
    }
    _coordinate = coordinate;
    if (!place(coordinate)) {
        return;
    }
    if (animated) {
        runAction(SCNAction::moveTo(_place.positionAt(0), duration));
    } else {
        standAtPlace();
    }
}

bool MarkerNode::place(CLLocationCoordinate2D coordinate) {
    const bool isPlaced = _place.moveTo(coordinate, *cameraProjection());
    _needsUpdate = _needsUpdate || isPlaced;
    return isPlaced;
}

void MarkerNode::standAtPlace() {
    setExactPosition(_place.positionAt(exactPosition().z));
}

void MarkerNode::setMarkerIcon(std::shared_ptr<const UIImage> icon) {
    const MainEntry entry{"setMarkerIcon"};
    if (!entry) {
        return;
    }
    _markerIcon = std::move(icon);
    if (_markerIcon) {
        prepareMarkerIcon();
        return;
    }
    if (const auto& shown = geometry()) {
        shown->setMaterials({});
        setGeometry(shown);
    }
    removeFromParentNode();
}

void MarkerNode::setTint(UIColor tint) {
    const MainEntry entry{"setTint"};
    if (!entry || tint.limited() == _tint) {
        return;
    }
    _tint = tint.limited();
    if (_markerIcon) {
        prepareMarkerIcon();
    }
}

void MarkerNode::setGroundAnchor(CGPoint anchor) {
    const MainEntry entry{"setGroundAnchor"};
    if (!entry || !std::isfinite(anchor.x) || !std::isfinite(anchor.y) || anchor == _groundAnchor) {
        return;
    }
    _groundAnchor = anchor;
    if (_markerIcon) {
        prepareMarkerIcon();
    }
}

void MarkerNode::setIsFlat(bool flat) {
    if (const MainEntry entry{"setIsFlat"}) {
        _isFlat = flat;
        needUpdate();
        if (_markerIcon) {
            prepareMarkerIcon();
        }
    }
}

void MarkerNode::setIsDraggable(bool draggable) {
    if (const MainEntry entry{"setIsDraggable"}) {
        _isDraggable = draggable;
    }
}

void MarkerNode::prepareMarkerIcon() {
    const CGSize size = _markerIcon->size();
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    auto material = std::make_shared<SCNMaterial>();
    material->readsFromDepthBuffer = false;
    // It keeps its size on screen: levels of detail would only blur it.
    material->diffuseUsesLevels = false;
    material->diffuse = _markerIcon;
    material->multiply = _tint;
    auto plane = std::make_shared<SCNPlane>(size.width, size.height);
    plane->setMaterials({std::move(material)});
    setPivot({(static_cast<float>(_groundAnchor.x) - 0.5F) * width,
              -((static_cast<float>(_groundAnchor.y) - 0.5F) * height), 0});
    setGeometry(std::move(plane));
    needUpdate();
}

void MarkerNode::needUpdate() {
    _needsUpdate = true;
    WakeUp::signal(Wake::frame);
}

void MarkerNode::storeRotation(double degrees) {
    _markerRotation = degrees;
    const Radians rotation = Radians::fromDegrees(degrees).narrowed();
    if (rotation.isFinite()) {
        _shownRotation = rotation;
    }
    needUpdate();
}

void MarkerNode::setMarkerRotation(double degrees) {
    if (const MainEntry entry{"setMarkerRotation"}) {
        storeRotation(degrees);
    }
}

void MarkerNode::setRotation(double degrees, bool animated, double duration) {
    const MainEntry entry{"setRotation"};
    if (!entry || !cameraProjection() || !CLLocationCoordinate2DIsValid(_coordinate)) {
        return;
    }
    if (animated && _isFlat) {
        rotateTo(degrees, duration);
        return;
    }
    storeRotation(degrees);
    updateMarkerRotation();
}

void MarkerNode::rotateTo(double degrees, double duration) {
    const Radians goal = -Radians::fromDegrees(degrees).narrowed();
    if (!goal.isFinite()) {
        return;
    }
    const Radians target = shortestTurn(goal, Radians(presentedEulerAngles().z)).narrowed();
    const std::uint64_t number = ++_rotationNumber;
    runAction(SCNAction::rotateTo(0, 0, target.value, duration), [weak = weak_from_this(), number, target] {
        if (const auto node = weak.lock()) {
            const SceneLock lock;
            static_cast<MarkerNode&>(*node).rotationEnded(number, -target);
        }
    });
    // Only now: starting it may have cancelled another one.
    _markerRotationActive = true;
}

void MarkerNode::rotationEnded(std::uint64_t number, Radians rotation) {
    if (number == _rotationNumber) {
        _shownRotation = rotation;
        _markerRotationActive = false;
        needUpdate();
    }
}

void MarkerNode::actionsWereCancelled() {
    // The move may have been cancelled while the rotation goes on.
    if (!runsActionOf(SCNAction::Kind::rotate)) {
        _markerRotationActive = false;
        needUpdate();
    }
}

void MarkerNode::updateMarkerRotation() {
    if (!_lastCamera || _markerRotationActive) {
        return;
    }
    const Radians goal = _isFlat ? -_shownRotation : _lastCamera->rotation;
    const Radians turn = shortestTurn(goal, Radians(presentedEulerAngles().z));
    const Radians tilt = _isFlat ? Radians{} : _lastCamera->viewingAngle;
    if (turn.isFinite() && tilt.isFinite()) {
        setExactEulerAngles({tilt.value, 0, turn.value});
    }
}

void MarkerNode::update(float zoom, Radians rotation, Radians viewingAngle) {
    applyRenderingOrder();
    if (!_markerIcon || !_place.point() || !cameraProjection()) {
        return;
    }
    const CameraState camera{zoom, rotation, viewingAngle, cameraProjection()->mapPointScreenPointRatio()};
    if (!_needsUpdate && _lastCamera == camera) {
        return;
    }
    _needsUpdate = false;
    _lastCamera = camera;
    if (const auto scale =
            _groundScale.unitsPerScreenPoint(camera.ratio, _place.coordinate().latitude, zoom)) {
        setScale({*scale, *scale, *scale});
    }
    updateMarkerRotation();
}

void MarkerNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    OverlayNode::setup(projection);
    _groundScale.setFollowsLatitude(projection && projection->stage().zoomIsScale);
    _needsUpdate = true;
    // Another engine has another origin: a marker whose coordinate has become invalid stays at its last
    // place.
    const bool isValid = CLLocationCoordinate2DIsValid(_coordinate);
    if (projection && place(isValid ? _coordinate : _place.coordinate())) {
        standAtPlace();
    }
    // A marker that was cleared has lost its icon's material.
    if (_markerIcon && (!geometry() || geometry()->materials().empty())) {
        prepareMarkerIcon();
    }
}

void MarkerNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    OverlayNode::addToMap(mapSceneView);
    // Leaving the scene before may have cut a move short.
    if (_place.point()) {
        standAtPlace();
    }
}

void MarkerNode::clearEverything() {
    OverlayNode::clearEverything();
    _markerRotationActive = false;
    needUpdate();
}

void MarkerNode::dragBy(OpenGlPoint offset) {
    const SceneLock lock;
    if (_place.point() && std::isfinite(offset.x) && std::isfinite(offset.y)) {
        _place.shiftBy(offset);
        standAtPlace();
    }
}

std::string MarkerNode::description() const {
    return "Marker " + descriptionOf(_coordinate);
}

} // namespace trelmix
