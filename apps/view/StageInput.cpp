#include "view/StageInput.h"

#include "view/CameraControl.h"

#include <cmath>

namespace trelmix::apps {

namespace {

constexpr double kLevelsPerNotch = 0.25;
/// Degrees.
constexpr double kRotationPerPoint = 0.4;
constexpr double kTiltPerPoint = 0.25;
SideviewHost::Phase sidePhase(InputTarget::Phase phase) {
    switch (phase) {
    case InputTarget::Phase::began:
        return SideviewHost::Phase::began;
    case InputTarget::Phase::moved:
        return SideviewHost::Phase::moved;
    case InputTarget::Phase::ended:
        return SideviewHost::Phase::ended;
    case InputTarget::Phase::cancelled:
        break;
    }
    return SideviewHost::Phase::cancelled;
}

} // namespace

void StageInput::setStage(Stage* stage) {
    cancelTouches();
    _stage = stage;
}

StageInput::Owner StageInput::ownerAt(CGPoint point) const {
    if (_hud.isNorthArrow(point)) {
        return Owner::northArrow;
    }
    return _stage->side() != nullptr && contains(_layout.side, point) ? Owner::side : Owner::map;
}

void StageInput::touch(InputTarget::Phase phase, std::int64_t identifier, CGPoint point, double time) {
    using Phase = InputTarget::Phase;
    if (!_stage) {
        return;
    }
    if (phase == Phase::began) {
        _touches[identifier] = ownerAt(point);
    }
    const auto owner = _touches.find(identifier);
    if (owner == _touches.end()) {
        return;
    }
    switch (owner->second) {
    case Owner::map:
        touchMap(phase, identifier, point, time);
        break;
    case Owner::side:
        _stage->side()->touch(sidePhase(phase), identifier, point, time);
        break;
    case Owner::northArrow:
        if (phase == Phase::ended && _hud.isNorthArrow(point)) {
            _stage->keys().resetRotation(_stage->engine());
        }
        break;
    }
    if (phase == Phase::ended || phase == Phase::cancelled) {
        _touches.erase(identifier);
    }
}

void StageInput::touchMap(InputTarget::Phase phase, std::int64_t identifier, CGPoint point, double time) {
    using Phase = InputTarget::Phase;
    ViewHost& host = _stage->host();
    switch (phase) {
    case Phase::began:
        host.touchBegan(identifier, point, time);
        break;
    case Phase::moved:
        host.touchMoved(identifier, point, time);
        break;
    case Phase::ended:
        host.touchEnded(identifier, point, time);
        break;
    case Phase::cancelled:
        host.touchCancelled(identifier, time);
        break;
    }
}

void StageInput::cancelTouches() {
    _touches.clear();
    if (_stage) {
        _stage->host().cancelTouches();
        if (SidePanel* side = _stage->side()) {
            side->cancelTouches();
        }
    }
}

void StageInput::wheel(CGPoint point, double notches) {
    if (_stage && contains(_layout.map, point)) {
        zoomAbout(_stage->engine(), {point.x - _layout.map.origin.x, point.y - _layout.map.origin.y},
                  notches * kLevelsPerNotch);
    } else if (_stage && _stage->side() != nullptr) {
        _stage->side()->wheel(point, std::exp2(notches * kLevelsPerNotch));
    }
}

void StageInput::turn(CGPoint start, CGPoint distance) {
    if (_stage && contains(_layout.map, start)) {
        moveBy(_stage->engine(),
               {.rotation = distance.x * kRotationPerPoint, .viewingAngle = -distance.y * kTiltPerPoint});
    }
}

} // namespace trelmix::apps
