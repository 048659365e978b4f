#include "view/CameraControl.h"
#include "view/ViewApp.h"

#include <cmath>
#include <utility>

namespace trelmix::apps {

namespace {

constexpr double kLevelsPerNotch = 0.25;
/// Degrees.
constexpr double kRotationPerPoint = 0.4;
constexpr double kTiltPerPoint = 0.25;
constexpr std::pair<Command, CameraStep> kCameraSteps[] = {
    {Command::rotateLeft, {.rotation = -15}}, {Command::rotateRight, {.rotation = 15}},
    {Command::tiltMore, {.viewingAngle = 5}}, {Command::tiltLess, {.viewingAngle = -5}},
    {Command::zoomIn, {.levels = 0.5}},       {Command::zoomOut, {.levels = -0.5}},
};

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

void ViewApp::touch(Phase phase, std::int64_t identifier, CGPoint point, double time) {
    if (!_stage) {
        return;
    }
    if (phase == Phase::began) {
        _touches[identifier] = _hud.isNorthArrow(point) ? Owner::northArrow
                               : _stage->side() != nullptr && contains(_layout.side, point) ? Owner::side
                                                                                            : Owner::map;
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

void ViewApp::touchMap(Phase phase, std::int64_t identifier, CGPoint point, double time) {
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

void ViewApp::cancelTouches() {
    _touches.clear();
    if (_stage) {
        _stage->host().cancelTouches();
        if (SidePanel* side = _stage->side()) {
            side->cancelTouches();
        }
    }
}

void ViewApp::wheel(CGPoint point, double notches) {
    if (_stage && contains(_layout.map, point)) {
        zoomAbout(_stage->engine(), {point.x - _layout.map.origin.x, point.y - _layout.map.origin.y},
                  notches * kLevelsPerNotch);
    } else if (_stage && _stage->side() != nullptr) {
        _stage->side()->wheel(point, std::exp2(notches * kLevelsPerNotch));
    }
}

void ViewApp::turn(CGPoint start, CGPoint distance) {
    if (_stage && contains(_layout.map, start)) {
        moveBy(_stage->engine(),
               {.rotation = distance.x * kRotationPerPoint, .viewingAngle = -distance.y * kTiltPerPoint});
    }
}

void ViewApp::command(Command command) {
    if (!_stage) {
        return;
    }
    TrelmixMapEngine& engine = _stage->engine();
    for (const auto& [moving, step] : kCameraSteps) {
        if (command == moving) {
            _stage->keys().moveBy(engine, step);
        }
    }
    switch (command) {
    case Command::quit:
        _quits = true;
        break;
    case Command::leave:
        _quits = !_showsHelp;
        _showsHelp = false;
        break;
    case Command::resetCamera:
        engine.setCamera(std::make_shared<TrelmixMapEngineCamera>(_sceneCamera.target, _sceneCamera.rotation,
                                                                  _sceneCamera.viewingAngle,
                                                                  static_cast<float>(_sceneCamera.zoom)),
                         true);
        break;
    case Command::levelUp:
    case Command::levelDown:
        stepLevel(command == Command::levelUp ? 1 : -1);
        break;
    case Command::toggleSideZoom:
        toggleSideZoom();
        break;
    case Command::toggleHelp:
        _showsHelp = !_showsHelp;
        break;
    case Command::savePicture:
        savePicture();
        break;
    case Command::printCamera:
        say(cameraArgument(engine));
        break;
    default:
        break;
    }
}

void ViewApp::stepLevel(int direction) {
    if (const auto level = _stage->stepLevel(direction)) {
        show("Level " + std::to_string(*level));
    }
}

void ViewApp::toggleSideZoom() {
    if (SidePanel* side = _stage->side()) {
        side->toggleZooming();
        show(side->sideview().enableZooming() ? "Side view: drag pans, wheel zooms"
                                              : "Side view: drag moves the map");
    }
}

void ViewApp::windowChanged() {
    _layoutIsStale = true;
}

} // namespace trelmix::apps
