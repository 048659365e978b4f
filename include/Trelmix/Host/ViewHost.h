/// @file
/// Runs an engine in a window of the application's.
#pragma once

#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace trelmix {

/// Takes a window's touches and draws an engine into the OpenGL ES context that the application has made
/// current.
///
/// Everything runs on the main thread, except that `drawFrame` may be called on one other thread, always the
/// same one, whose context it then is (see RenderThread). Time is the process's clock, which runs by itself.
/// Keeps the engine alive.
class TRELMIX_API ViewHost {
public:
    /// Where the map lies in the window. Each side of the map and of the window has 1 to 16384 pixels, and
    /// the map's corner lies within 16384 pixels of the window's; the map need not lie in the window.
    struct Layout {
        CGSize window{800, 600};        ///< points
        CGRect map{{0, 0}, {800, 600}}; ///< points from the window's top left corner
        double scale = 1;               ///< pixels per point
    };
    /// What is chosen once.
    struct Options {
        /// Samples a pixel for smooth edges; 0 chooses 4, or 1 on a driver that draws in software. A
        /// framebuffer with samples of its own is drawn into as it is, which is the quickest way to have
        /// several; without them the map is drawn beside it and copied.
        int samples = 0;
        /// Seconds that one frame may spend on bringing images to the graphics processor while the camera
        /// moves; four times that while it stands, when a late frame is not seen. What is in view comes
        /// first; what is left comes with the next frames.
        double uploadSecondsPerFrame = 0.004;
        /// Nobody but this host draws in the context: no state is asked for and put back, which some drivers
        /// take long for, and what is drawn into is the window (framebuffer 0), whatever is bound.
        bool contextIsOurs = false;
    };
    /// An image drawn upright over the window: attribution, controls, a side view.
    struct OverlayImage {
        std::shared_ptr<const UIImage> image; ///< empty draws nothing
        /// Points from the window's top left corner.
        CGRect frame;
    };
    /// What became of a frame.
    enum class Drawing {
        /// There is a new picture to present.
        drawn,
        /// Nothing has changed since the last frame: no OpenGL call was made, and there is nothing to
        /// present.
        unchanged,
        /// No current context, or one that cannot do what is needed; `failure()` tells.
        failed
    };

    /// Fails on another thread than the main one, when the engine is empty or of a foreign kind, and when the
    /// layout is out of range.
    static Result<std::unique_ptr<ViewHost>> make(std::shared_ptr<TrelmixMapEngine> engine, Layout layout,
                                                  Options options);
    /// Destroy it with the context current, or after the context is gone.
    virtual ~ViewHost();

    /// The engine that it runs. Main thread.
    virtual std::shared_ptr<TrelmixMapEngine> engine() const = 0;
    /// As it was set last. Main thread.
    virtual Layout layout() const = 0;
    /// A window that is resized keeps markers at their size. False when the layout is out of range.
    virtual bool setLayout(Layout layout) = 0;
    /// The whole window is the map.
    bool resize(double width, double height, double scale) {
        return setLayout({{width, height}, {{0, 0}, {width, height}}, scale});
    }

    /// A finger, or a mouse's button, goes down. `identifier` names it until it ends; points are from the
    /// window's top left corner; `time` in seconds of any steady clock, the same one for all touches.
    virtual void touchBegan(std::int64_t identifier, CGPoint point, double time) = 0;
    /// Moves of several fingers that come before the next `pump` are one event. A finger that is reported
    /// where it already was has not moved.
    virtual void touchMoved(std::int64_t identifier, CGPoint point, double time) = 0;
    /// The finger moves to `point`, if it is elsewhere, and lifts there. A point that is not finite lifts it
    /// where it was.
    virtual void touchEnded(std::int64_t identifier, CGPoint point, double time) = 0;
    /// The system has taken the finger away: what it did is cancelled.
    virtual void touchCancelled(std::int64_t identifier, double time) = 0;
    /// Call when the window loses its input.
    virtual void cancelTouches() = 0;

    /// Replaces the images drawn over the window, the first one undermost.
    virtual void setOverlayImages(std::vector<OverlayImage> images) = 0;
    /// Runs main-queue blocks and due timers; true when there were any. Call it from the event loop.
    virtual bool pump() = 0;
    /// Waits until there is something to pump, at most `seconds`.
    virtual void waitForWork(double seconds) = 0;

    /// Has `function` called when there may be a frame to draw or something to pump, so that an event loop
    /// can sleep until then: after it, ask `needsDisplay` and `secondsToPump`. It is called on whichever
    /// thread has the news, and not again before one of the two has been asked. It only notes and signals
    /// (posts an event to the loop): it neither calls the engine nor waits. Empty ends it; once this returns
    /// the one before is not called any more. Main thread.
    virtual void setWakeUp(std::function<void()> function) = 0;
    /// Whether `drawFrame` may find something new: an overlay, the camera, the layout has changed since, an
    /// animation runs, images are still on their way to the graphics processor. True before the first frame.
    /// Any thread.
    virtual bool needsDisplay() const = 0;
    /// Seconds until `pump` wants to be called: 0 when there is something to run, infinite when nothing is
    /// known that will be. Main thread.
    virtual double secondsToPump() const = 0;

    /// Advances animations, updates the overlays and draws into the framebuffer that is bound in the current
    /// context: inside the map's rectangle, and where overlay images lie. Puts every OpenGL state it changes
    /// back, unless the context is the engine's own.
    /// @param always draw also when nothing has changed, for windows whose buffers do not keep their picture.
    virtual Drawing drawFrame(bool always = false) = 0;
    /// The picture of the last frame, without the overlay images: it may have to be drawn once more for that.
    /// Fails when there was none, or it could not be drawn. On the drawing thread.
    virtual Result<std::shared_ptr<const UIImage>> image() = 0;
    /// Why the last `drawFrame` failed; empty when it did not. On the drawing thread.
    virtual std::string failure() const = 0;
    /// Forgets the context's objects; the next `drawFrame` makes them anew in the context current then. For a
    /// context that was lost.
    virtual void contextWasLost() = 0;
};

} // namespace trelmix
