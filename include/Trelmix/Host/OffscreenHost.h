/// @file
/// Runs an engine without a window.
#pragma once

#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <functional>
#include <memory>

namespace trelmix {

/// Sizes an engine, steps its time and draws it with OpenGL ES into a picture.
///
/// The application decides when time passes: each step advances running animations and updates the overlays;
/// only what is asked for as a picture is drawn. What is queued for the main thread (delegate calls, tile
/// answers, timers) runs in `pump`. Uses a context of its own and leaves the thread with the one that was
/// current. Stops the process's clock at the time of the steps. Main thread only; keeps the engine alive.
class TRELMIX_API OffscreenHost {
public:
    /// How large and how smooth the pictures are.
    struct Options {
        /// Points; 1 to 16384 pixels a side after scaling.
        double width = 800;
        /// Points; 1 to 16384 pixels a side after scaling.
        double height = 600;
        /// Pixels per point.
        double scale = 1;
        /// Samples a pixel for smooth edges; 1 for none. Limited to what the driver has.
        int samples = 4;
        /// Largest side of a texture in pixels; 0 for the driver's own limit.
        int maximumTextureSize = 0;
    };

    /// Fails on another thread than the main one, when the engine is empty or of a foreign kind, when a size
    /// is out of range, and when there is no OpenGL ES driver (`isDriverMissing` of the reason then is true).
    static Result<std::unique_ptr<OffscreenHost>> make(std::shared_ptr<TrelmixMapEngine> engine,
                                                       Options options);
    /// Whether a reason given by `make` means that no driver could be started.
    static bool isDriverMissing(const std::string& reason);
    virtual ~OffscreenHost();

    /// Gives the engine another size; false when it is out of range.
    virtual bool resize(double width, double height, double scale) = 0;
    /// Sets the clock `seconds` further on and makes the next frame. Not negative; NaN counts as 0.
    virtual void step(double seconds) = 0;
    /// Runs main-queue blocks and due timers; true when there were any.
    virtual bool pump() = 0;
    /// Sleeps until something is queued for the main thread, at most `seconds`. For waiting for tiles.
    virtual void wait(double seconds) = 0;
    /// Steps, pumps and waits until every tile in view of every layer is answered, or until `seconds` of real
    /// time are over. The map's own clock goes some seconds on, so that animations end; the next picture
    /// shows what there is.
    /// @returns how the tiles stand: all are answered, or the time was too short; some may have failed.
    TileCounts settle(double seconds) { return settle(seconds, {}); }
    /// @param progress hears how the tiles stand before each wait, at least every 0.05 s; when it gives
    /// false, the waiting ends. What it throws comes out of `settle`.
    virtual TileCounts settle(double seconds, const std::function<bool(const TileCounts&)>& progress) = 0;
    /// Draws the frame of the last step and gives its pixels; fails before the first step, and when the
    /// driver cannot draw the frame or give it back.
    virtual Result<std::shared_ptr<const UIImage>> image() = 0;
};

} // namespace trelmix
