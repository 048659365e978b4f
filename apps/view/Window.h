#pragma once

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <optional>
#include <string>

struct SDL_Window;

namespace trelmix::apps {

/// A resizable window with an OpenGL ES context that no thread has current yet.
///
/// One at a time in a process. Main thread, except for the three operations that say so.
class Window {
public:
    /// @param size points; what is larger than the display becomes as large as the display.
    /// @param scale pixels per point; absent: the display's.
    static Result<std::unique_ptr<Window>> open(const std::string& title, CGSize size,
                                                std::optional<double> scale);
    /// Whether a reason given by `open` means that there is no OpenGL ES driver.
    static bool isDriverMissing(const std::string& reason);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// In the units of the window system's events, which on high-density displays have several pixels.
    CGSize size() const;
    CGSize pixelSize() const;
    /// Pixels per point.
    double scale() const;
    void setTitle(const std::string& title);
    /// The kind of the event that only ends a wait for events.
    std::uint32_t wakeUpEvent() const { return _wakeUpEvent; }

    /// Binds the context to the calling thread.
    bool makeCurrent();
    /// Shows what has been drawn; the thread that has the context.
    void present();
    /// Leaves the calling thread without a context.
    void release();
    /// The three above for a render thread, which must end before the window.
    RenderThread::Surface surface();

    /// What has been drawn since the last `present`; the thread that has the context.
    std::shared_ptr<const UIImage> drawnPicture(int width, int height, double scale) const;

private:
    Window() = default;

    SDL_Window* _window = nullptr;
    void* _context = nullptr;
    std::uint32_t _wakeUpEvent = 0;
    /// Absent: as many as a unit has.
    std::optional<double> _scale;
};

} // namespace trelmix::apps
