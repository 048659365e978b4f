/// @file
/// Draws a window's frames on a thread of its own.
#pragma once

#include <Trelmix/Export.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace trelmix {

class ViewHost;

/// A thread that owns the window's context: it draws a ViewHost's frames, at most sixty a second, and
/// presents those in which something has changed. Between them it makes no OpenGL call, and sleeps while
/// nothing changes.
///
/// Started and destroyed on the main thread, which meanwhile pumps the host. Before the start the thread that
/// made the context must release it: a context is current on one thread only. Destroyed inside a call that
/// the drawing thread itself makes (a tile question), it ends with the frame under way without being waited
/// for.
class TRELMIX_API RenderThread {
public:
    /// What the window system offers; all called on the new thread.
    struct Surface {
        /// Binds the context to the calling thread; false when that fails, and the thread then ends.
        std::function<bool()> makeCurrent;
        /// Shows what has been drawn. May wait for the display.
        std::function<void()> present;
        /// Leaves the thread without a context.
        std::function<void()> release;
    };

    /// The host is shared with the thread; a missing host or function makes a thread that ends at once, and
    /// so does a start on another thread than the main one.
    static std::unique_ptr<RenderThread> start(std::shared_ptr<ViewHost> host, Surface surface);
    /// Waits for the frame under way; nothing is called after it.
    virtual ~RenderThread();

    /// Frames for which the overlays were updated. Any thread.
    virtual std::uint64_t updateCount() const = 0;
    /// Frames that were presented: those in which something had changed. Any thread.
    virtual std::uint64_t presentCount() const = 0;
    /// Waits until that many updates have been made since the start, also while nothing changes; false when
    /// the thread has ended before, and at once when called on the drawing thread.
    virtual bool waitForUpdates(std::uint64_t count) = 0;
    /// Has the next frame drawn and presented whether or not something changed (an uncovered window). Any
    /// thread.
    virtual void setNeedsDisplay() = 0;
    /// Runs `job` on the drawing thread before the next frame, with the context current, and waits for it.
    /// False when the thread has ended. What it throws is reported as a fault. Main thread.
    virtual bool runBetweenFrames(std::function<void()> job) = 0;
};

} // namespace trelmix
