#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cstdint>
#include <map>
#include <utility>

union SDL_Event;

namespace trelmix::apps {

/// What keys do.
enum class Command {
    quit,
    leave, ///< what is open on top, or the program
    resetCamera,
    rotateLeft,
    rotateRight,
    tiltMore,
    tiltLess,
    zoomIn,
    zoomOut,
    levelUp,
    levelDown,
    toggleSideZoom,
    toggleHelp,
    savePicture,
    printCamera
};

/// Hears what the hands do. Points are from the window's top left corner, times in seconds.
class InputTarget {
public:
    enum class Phase { began, moved, ended, cancelled };
    virtual ~InputTarget() = default;

    virtual void touch(Phase phase, std::int64_t identifier, CGPoint point, double time) = 0;
    virtual void cancelTouches() = 0;
    /// A mouse wheel was turned away from the user by so many notches.
    virtual void wheel(CGPoint point, double notches) = 0;
    /// The mouse was dragged by so many points with the right button, which went down at `start`.
    virtual void turn(CGPoint start, CGPoint distance) = 0;
    virtual void command(Command command) = 0;
    /// The window has another size, or needs to be drawn again.
    virtual void windowChanged() = 0;
};

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
