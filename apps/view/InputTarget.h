#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cstdint>

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

} // namespace trelmix::apps
