#include "view/InputMapper.h"

#include <SDL.h>

#include <optional>

namespace trelmix::apps {

namespace {

double secondsOf(const SDL_Event& event) {
    return event.common.timestamp / 1000.0;
}

std::optional<Command> commandOf(SDL_Keycode key) {
    switch (key) {
    case SDLK_q:
        return Command::quit;
    case SDLK_ESCAPE:
        return Command::leave;
    case SDLK_r:
        return Command::resetCamera;
    case SDLK_LEFT:
        return Command::rotateLeft;
    case SDLK_RIGHT:
        return Command::rotateRight;
    case SDLK_UP:
        return Command::tiltMore;
    case SDLK_DOWN:
        return Command::tiltLess;
    case SDLK_PLUS:
    case SDLK_EQUALS:
    case SDLK_KP_PLUS:
        return Command::zoomIn;
    case SDLK_MINUS:
    case SDLK_KP_MINUS:
        return Command::zoomOut;
    case SDLK_PAGEUP:
        return Command::levelUp;
    case SDLK_PAGEDOWN:
        return Command::levelDown;
    case SDLK_z:
        return Command::toggleSideZoom;
    case SDLK_h:
    case SDLK_F1:
        return Command::toggleHelp;
    case SDLK_s:
        return Command::savePicture;
    case SDLK_c:
        return Command::printCamera;
    default:
        return std::nullopt;
    }
}

} // namespace

void InputMapper::setWindow(CGSize units, CGSize points) {
    _points = points;
    _pointsPerUnit = {points.width / units.width, points.height / units.height};
}

void InputMapper::handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_QUIT:
        _target.command(Command::quit);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        handleButton(event);
        break;
    case SDL_MOUSEMOTION:
        handleMotion(event);
        break;
    case SDL_MOUSEWHEEL:
        _target.wheel(_pointer, static_cast<double>(event.wheel.preciseY) *
                                    (event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -1 : 1));
        break;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP:
        handleFinger(event);
        break;
    case SDL_KEYDOWN:
        handleKey(event);
        break;
    case SDL_WINDOWEVENT:
        handleWindow(event);
        break;
    default:
        break;
    }
}

void InputMapper::handleButton(const SDL_Event& event) {
    if (event.button.which == SDL_TOUCH_MOUSEID) {
        return;
    }
    _pointer = pointAt(event.button.x, event.button.y);
    const bool isDown = event.type == SDL_MOUSEBUTTONDOWN;
    if (event.button.button == SDL_BUTTON_LEFT && isDown != _leftIsDown) {
        _leftIsDown = isDown;
        _target.touch(isDown ? InputTarget::Phase::began : InputTarget::Phase::ended, kMouse, _pointer,
                      secondsOf(event));
    } else if (event.button.button == SDL_BUTTON_RIGHT) {
        _rightIsDown = isDown;
        _rightStart = _pointer;
    }
}

void InputMapper::handleMotion(const SDL_Event& event) {
    if (event.motion.which == SDL_TOUCH_MOUSEID) {
        return;
    }
    const CGPoint before = _pointer;
    _pointer = pointAt(event.motion.x, event.motion.y);
    if (_leftIsDown) {
        _target.touch(InputTarget::Phase::moved, kMouse, _pointer, secondsOf(event));
    } else if (_rightIsDown) {
        _target.turn(_rightStart, {_pointer.x - before.x, _pointer.y - before.y});
    }
}

void InputMapper::handleFinger(const SDL_Event& event) {
    const auto& finger = event.tfinger;
    const SDL_TouchDeviceType kind = SDL_GetTouchDeviceType(finger.touchId);
    const bool isTouchPad =
        kind == SDL_TOUCH_DEVICE_INDIRECT_ABSOLUTE || kind == SDL_TOUCH_DEVICE_INDIRECT_RELATIVE;
    // A touch pad moves the mouse, which has events of its own.
    if (finger.touchId == SDL_MOUSE_TOUCHID || isTouchPad) {
        return;
    }
    const std::pair<std::int64_t, std::int64_t> key{finger.touchId, finger.fingerId};
    const std::int64_t identifier = identifierOf(key.first, key.second);
    // Fingers count in fractions of the window.
    const CGPoint point{static_cast<double>(finger.x) * _points.width,
                        static_cast<double>(finger.y) * _points.height};
    const auto phase = event.type == SDL_FINGERDOWN     ? InputTarget::Phase::began
                       : event.type == SDL_FINGERMOTION ? InputTarget::Phase::moved
                                                        : InputTarget::Phase::ended;
    if (phase == InputTarget::Phase::ended) {
        _fingers.erase(key);
    }
    _target.touch(phase, identifier, point, secondsOf(event));
}

std::int64_t InputMapper::identifierOf(std::int64_t device, std::int64_t finger) {
    const auto [entry, isNew] = _fingers.try_emplace({device, finger}, _nextFinger);
    _nextFinger += isNew ? 1 : 0;
    return entry->second;
}

void InputMapper::handleKey(const SDL_Event& event) {
    constexpr int kOtherMeaning = KMOD_CTRL | KMOD_ALT | KMOD_GUI;
    if ((event.key.keysym.mod & kOtherMeaning) != 0) {
        return;
    }
    if (const auto command = commandOf(event.key.keysym.sym)) {
        _target.command(*command);
    }
}

void InputMapper::handleWindow(const SDL_Event& event) {
    switch (event.window.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_RESTORED:
    case SDL_WINDOWEVENT_DISPLAY_CHANGED:
        _target.windowChanged();
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
    case SDL_WINDOWEVENT_HIDDEN:
    case SDL_WINDOWEVENT_MINIMIZED:
        cancel();
        break;
    default:
        break;
    }
}

void InputMapper::cancel() {
    _leftIsDown = false;
    _rightIsDown = false;
    _fingers.clear();
    _target.cancelTouches();
}

} // namespace trelmix::apps
