#include "Host/WindowInput.h"

#include "Platform/Foundation/CallerFault.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {

namespace {

using Pace = CameraSteps::Pace;

constexpr double kLevelsPerNotch = 0.25;
/// Degrees.
constexpr double kRotationPerPoint = 0.4;
constexpr double kTiltPerPoint = 0.25;
/// Points that a press may wander and still be a click.
constexpr double kClickSlop = 3;
/// Seconds, and points, between the clicks of a double click.
constexpr double kDoubleClickTime = 0.4;
constexpr double kDoubleClickSlop = 10;
/// What a key does once: points, degrees, levels.
constexpr double kKeyPan = 100;
constexpr double kKeyRotation = 15;
constexpr double kKeyTilt = 5;
constexpr double kKeyLevels = 0.5;

bool isFinite(CGPoint point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

double distance(CGPoint a, CGPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

CameraStep stepOf(MapInput::Key key, bool turns) {
    switch (key) {
    case MapInput::Key::left:
        return turns ? CameraStep{.rotation = -kKeyRotation} : CameraStep{.pan = {-kKeyPan, 0}};
    case MapInput::Key::right:
        return turns ? CameraStep{.rotation = kKeyRotation} : CameraStep{.pan = {kKeyPan, 0}};
    case MapInput::Key::up:
        return turns ? CameraStep{.viewingAngle = kKeyTilt} : CameraStep{.pan = {0, -kKeyPan}};
    case MapInput::Key::down:
        return turns ? CameraStep{.viewingAngle = -kKeyTilt} : CameraStep{.pan = {0, kKeyPan}};
    case MapInput::Key::plus:
        return {.levels = kKeyLevels};
    case MapInput::Key::minus:
        return {.levels = -kKeyLevels};
    case MapInput::Key::home:
        break;
    }
    return {};
}

} // namespace

bool WindowInput::Map::contains(CGPoint point) const {
    const CGPoint at = inside(point);
    return at.x >= 0 && at.y >= 0 && at.x < frame.size.width && at.y < frame.size.height;
}

WindowInput::Map WindowInput::map(const char* caller) const {
    if (!requireMainThread(caller)) {
        return {};
    }
    // Not held for the call: the application ends its host when it likes, with the context that it needs.
    ViewHost* host = _host.lock().get();
    return host != nullptr ? Map{host, host->engine(), host->layout().map} : Map{};
}

void WindowInput::buttonDown(Button button, CGPoint point, Modifiers modifiers, double time) {
    const Map map = this->map("MapInput::buttonDown");
    if (!map || !map.contains(point) || _press || button == Button::middle) {
        return;
    }
    _pointer = point;
    const bool isTurn = button == Button::right || modifiers.control;
    const Action action = isTurn ? Action::turn : modifiers.shift ? Action::box : Action::touch;
    _press = Press{button, action, point, false};
    if (action == Action::touch) {
        _steps.forget();
        map.host->touchBegan(kMouse, point, time);
    }
}

void WindowInput::pointerMoved(CGPoint point, double time) {
    const Map map = this->map("MapInput::pointerMoved");
    if (!map || !isFinite(point)) {
        return;
    }
    const CGPoint before = std::exchange(_pointer, point).value_or(point);
    if (!_press) {
        return;
    }
    _press->hasMoved = _press->hasMoved || distance(point, _press->start) > kClickSlop;
    if (_press->action == Action::touch) {
        map.host->touchMoved(kMouse, point, time);
    } else if (_press->action == Action::turn) {
        _steps.moveBy(*map.engine, map.frame.size,
                      {.rotation = (point.x - before.x) * kRotationPerPoint,
                       .viewingAngle = -(point.y - before.y) * kTiltPerPoint},
                      Pace::atOnce);
    }
}

void WindowInput::buttonUp(Button button, CGPoint point, double time) {
    const Map map = this->map("MapInput::buttonUp");
    if (!map || !_press || _press->button != button) {
        return;
    }
    if (isFinite(point)) {
        _pointer = point;
    }
    const Press press = *std::exchange(_press, std::nullopt);
    const bool isClick = !press.hasMoved && distance(*_pointer, press.start) <= kClickSlop;
    if (press.action == Action::touch) {
        map.host->touchEnded(kMouse, point, time);
    } else if (isClick) {
        finishClick(map, {button, press.start, time});
    } else if (press.action == Action::box) { // not a point, as it is no click
        CGRect box = boxOf(map, press);
        box.origin = map.inside(box.origin);
        _steps.zoomTo(*map.engine, box, map.frame.size);
    }
}

void WindowInput::finishClick(const Map& map, const Click& click) {
    const auto last = std::exchange(_lastClick, click);
    const bool isSecond = last && last->button == click.button && click.time >= last->time &&
                          click.time - last->time <= kDoubleClickTime &&
                          distance(click.point, last->point) <= kDoubleClickSlop;
    if (isSecond) {
        _lastClick.reset();
        zoomAt(map, click.point, -1, Pace::animated);
    }
}

void WindowInput::pointerLeft() {
    if (requireMainThread("MapInput::pointerLeft") && !_press) {
        _pointer.reset();
    }
}

void WindowInput::zoomAt(const Map& map, CGPoint point, double levels, Pace pace) {
    if (map && map.contains(point) && std::isfinite(levels)) {
        _steps.zoomAbout(*map.engine, map.inside(point), levels, pace);
    }
}

void WindowInput::wheel(CGPoint point, double notches) {
    zoomAt(map("MapInput::wheel"), point, notches * kLevelsPerNotch, Pace::atOnce);
}

void WindowInput::pinch(CGPoint point, double factor) {
    // Of what is not above zero the logarithm is not finite.
    zoomAt(map("MapInput::pinch"), point, std::log2(factor), Pace::atOnce);
}

void WindowInput::touchBegan(std::int64_t identifier, CGPoint point, double time) {
    if (const Map map = this->map("MapInput::touchBegan"); map && identifier != kMouse) {
        _steps.forget();
        map.host->touchBegan(identifier, point, time);
    }
}

void WindowInput::touchMoved(std::int64_t identifier, CGPoint point, double time) {
    if (const Map map = this->map("MapInput::touchMoved"); map && identifier != kMouse) {
        map.host->touchMoved(identifier, point, time);
    }
}

void WindowInput::touchEnded(std::int64_t identifier, CGPoint point, double time) {
    if (const Map map = this->map("MapInput::touchEnded"); map && identifier != kMouse) {
        map.host->touchEnded(identifier, point, time);
    }
}

void WindowInput::touchCancelled(std::int64_t identifier, double time) {
    if (const Map map = this->map("MapInput::touchCancelled"); map && identifier != kMouse) {
        map.host->touchCancelled(identifier, time);
    }
}

void WindowInput::keyDown(Key key, Modifiers modifiers) {
    const Map map = this->map("MapInput::keyDown");
    if (!map || modifiers.control) {
        return;
    }
    if (key == Key::home) {
        if (_home) {
            _steps.moveTo(*map.engine, *_home);
        }
        return;
    }
    _steps.moveBy(*map.engine, map.frame.size, stepOf(key, modifiers.shift), Pace::animated);
}

void WindowInput::faceNorth() {
    if (const Map map = this->map("MapInput::faceNorth")) {
        _steps.faceNorth(*map.engine, map.frame.size);
    }
}

void WindowInput::setHome(std::optional<TrelmixMapEngineCamera> camera) {
    if (requireMainThread("MapInput::setHome")) {
        _home = std::move(camera);
    }
}

void WindowInput::cancel() {
    if (const Map map = this->map("MapInput::cancel")) {
        _press.reset();
        _lastClick.reset();
        _pointer.reset();
        map.host->cancelTouches();
    }
}

MapInput::PointerShape WindowInput::pointerShape() const {
    const Map map = this->map("MapInput::pointerShape");
    if (!map || !_pointer || (!_press && !map.contains(*_pointer))) {
        return PointerShape::arrow;
    }
    if (!_press) {
        return PointerShape::hand;
    }
    return _press->action == Action::box    ? PointerShape::crosshair
           : _press->action == Action::turn ? PointerShape::turning
                                            : PointerShape::grabbing;
}

std::optional<MapInput::Hover> WindowInput::hover() const {
    const Map map = this->map("MapInput::hover");
    if (!map || !_pointer || _press || !map.contains(*_pointer)) {
        return std::nullopt;
    }
    const auto projection = map.engine->projection();
    const CLLocationCoordinate2D place =
        projection ? projection->worldCoordinateFor(map.inside(*_pointer)) : kCLLocationCoordinate2DInvalid;
    return CLLocationCoordinate2DIsValid(place) ? std::optional(Hover{*_pointer, place}) : std::nullopt;
}

CGRect WindowInput::boxOf(const Map& map, const Press& press) const {
    const CGPoint pointer = _pointer.value_or(press.start);
    const CGPoint& from = map.frame.origin;
    const CGPoint end{std::clamp(pointer.x, from.x, from.x + map.frame.size.width),
                      std::clamp(pointer.y, from.y, from.y + map.frame.size.height)};
    return {{std::min(press.start.x, end.x), std::min(press.start.y, end.y)},
            {std::abs(end.x - press.start.x), std::abs(end.y - press.start.y)}};
}

std::optional<CGRect> WindowInput::box() const {
    const Map map = this->map("MapInput::box");
    const bool isDrawn = map && _press && _press->action == Action::box;
    return isDrawn ? std::optional(boxOf(map, *_press)) : std::nullopt;
}

} // namespace trelmix
