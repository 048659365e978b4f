#pragma once

#include "Platform/View/UIGestureRecognizer.h"

#include <functional>
#include <memory>
#include <vector>

namespace trelmix {

/// What fingers may do to the camera.
struct GestureFlags {
    bool rotation = true;
    bool tilt = true;
    bool zoom = true;
    bool scroll = true;
};

/// Radians of tilt per point that two fingers move down.
inline constexpr double kTiltPerPoint = -0.017453292519943295;

/// How fingers move the camera: one of several ways, which EngineGestures chooses from.
///
/// A part of its engine. Needs the scene lock.
class CameraGestures {
public:
    virtual ~CameraGestures() = default;
    /// The gestures that move the camera, with actions that need not look whether the engine still lives.
    struct Gesture {
        std::shared_ptr<UIGestureRecognizer> recognizer;
        std::function<void(UIGestureRecognizer&)> action;
    };
    virtual std::vector<Gesture> gestures() = 0;
    /// The fingers move something else for a while.
    virtual void pause() {}
    /// The point about which the camera turns and zooms while the fingers' middle is at `location`.
    virtual CGPoint centre(CGPoint location) const { return location; }
    /// @param location points, in the engine's view.
    virtual void doubleTap(CGPoint location) = 0;
    /// Asked while no marker is dragged.
    virtual bool recognizesTogether(const UIGestureRecognizer& asked,
                                    const UIGestureRecognizer& other) const = 0;
};

} // namespace trelmix
