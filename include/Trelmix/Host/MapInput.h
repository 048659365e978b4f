/// @file
/// What hands do in a window, for the map in it.
#pragma once

#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineCamera.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace trelmix {

/// Turns a toolkit's mouse, wheel, keyboard and fingers into what the map of a ViewHost does, the same in
/// every window. The toolkit's events are passed on as they come.
///
/// - Left drag: a finger, and so pans, taps, presses long and drags markers as one does.
/// - Right drag, or Control and left drag: turns (0.4 degrees a point) and tilts (0.25) the map.
/// - Shift and left drag: a box, which the map zooms to when the button is released.
/// - Wheel and a trackpad's pinch: zoom about the pointer.
/// - Double click with the right button, or with Shift: zooms out by one about the pointer.
/// - Keys: see `Key`.
///
/// A gesture that is switched off in the engine (`enableZoomGesture` and so on) is so for mouse and keys too.
/// Points are from the window's top left corner. What is not finite is ignored, and so is everything before
/// the first camera and once the host is gone, which this object does not keep alive. The application may
/// destroy this object and the host in whatever it hears meanwhile. Main thread only; a call on another one
/// is a caller's fault and does nothing.
class TRELMIX_API MapInput {
public:
    /// A mouse's button; the middle one does nothing.
    enum class Button { left, middle, right };
    /// The arrows pan by 100 points; with Shift they turn by 15 degrees and tilt by 5. `plus` and `minus`
    /// zoom by half a level, `home` leads to `setHome`'s camera. All animated; steps that come quicker add
    /// up.
    enum class Key { left, right, up, down, plus, minus, home };
    /// Held while a button or a key goes down.
    struct Modifiers {
        bool shift = false;   ///< either Shift key
        bool control = false; ///< either Control key
    };
    /// What the pointer is to look like.
    enum class PointerShape {
        arrow,    ///< it is not on the map
        hand,     ///< on the map
        grabbing, ///< it drags the map
        turning,  ///< it turns and tilts the map
        crosshair ///< it draws a box
    };
    /// The pointer on the map, while no button is down.
    struct Hover {
        CGPoint point;                     ///< points of the window
        CLLocationCoordinate2D coordinate; ///< of the ground below it
    };

    /// For that host's map; never null. The object belongs to the caller.
    static std::unique_ptr<MapInput> make(std::weak_ptr<ViewHost> host);
    virtual ~MapInput();

    /// A mouse's button. While one is down the others do nothing; one that goes down outside the map's
    /// rectangle is the application's. `time` in seconds, as for fingers.
    virtual void buttonDown(Button button, CGPoint point, Modifiers modifiers, double time) = 0;
    /// Also without a button down.
    virtual void pointerMoved(CGPoint point, double time) = 0;
    /// A point that is not finite releases it where it was.
    virtual void buttonUp(Button button, CGPoint point, double time) = 0;
    /// The pointer has left the window.
    virtual void pointerLeft() = 0;
    /// Notches, turned away from the user, of a quarter level each. A trackpad's are fractions.
    virtual void wheel(CGPoint point, double notches) = 0;
    /// A trackpad's pinch: by how much the fingers are further apart than at the event before; above 0.
    virtual void pinch(CGPoint point, double factor) = 0;

    /// A finger on a touch screen, as in ViewHost. Any identifier but the lowest number there is, which is
    /// the mouse's.
    virtual void touchBegan(std::int64_t identifier, CGPoint point, double time) = 0;
    /// As in ViewHost.
    virtual void touchMoved(std::int64_t identifier, CGPoint point, double time) = 0;
    /// As in ViewHost.
    virtual void touchEnded(std::int64_t identifier, CGPoint point, double time) = 0;
    /// As in ViewHost.
    virtual void touchCancelled(std::int64_t identifier, double time) = 0;

    /// A key goes down, or repeats. With Control it is the application's.
    virtual void keyDown(Key key, Modifiers modifiers) = 0;
    /// What a click on a compass does: north to the top, and when it is there the view straight down.
    virtual void faceNorth() = 0;
    /// Where the `home` key leads; empty (as at first) leaves the map where it is.
    virtual void setHome(std::optional<TrelmixMapEngineCamera> camera) = 0;
    /// Everything that is held is let go without effect. Call it when the window loses its input.
    virtual void cancel() = 0;

    /// For the application's window to show; asked after each event.
    virtual PointerShape pointerShape() const = 0;
    /// Empty while a button is down, and where there is no ground.
    virtual std::optional<Hover> hover() const = 0;
    /// The box that is being drawn, points of the window, to be shown by the application.
    virtual std::optional<CGRect> box() const = 0;
};

} // namespace trelmix
