#pragma once

#include "view/InputTarget.h"

#include <cstdint>
#include <map>
#include <utility>

union SDL_Event;

namespace trelmix::apps {

/// Turns a window's events into what they mean. The left mouse button is a finger; fingers of several touch
/// screens are told apart. Main thread.
class InputMapper {
public:
    explicit InputMapper(InputTarget& target) : _target(target) {}

    /// @param units the window's size as the events count it.
    /// @param points the same in points.
    void setWindow(CGSize units, CGSize points);
    void handle(const SDL_Event& event);

private:
    enum : std::int64_t { kMouse = 0, kFirstFinger = 1 };
    void handleButton(const SDL_Event& event);
    void handleMotion(const SDL_Event& event);
    void handleFinger(const SDL_Event& event);
    void handleKey(const SDL_Event& event);
    void handleWindow(const SDL_Event& event);
    void cancel();
    CGPoint pointAt(double x, double y) const { return {x * _pointsPerUnit.x, y * _pointsPerUnit.y}; }
    std::int64_t identifierOf(std::int64_t device, std::int64_t finger);

    InputTarget& _target;
    CGSize _points;
    CGPoint _pointsPerUnit{1, 1};
    CGPoint _pointer;
    bool _leftIsDown = false;
    bool _rightIsDown = false;
    CGPoint _rightStart;
    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> _fingers;
    std::int64_t _nextFinger = kFirstFinger;
};

} // namespace trelmix::apps
