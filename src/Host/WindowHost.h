#pragma once

#include "Host/HostedEngine.h"
#include "Platform/Foundation/WakeUp.h"
#include "Platform/View/TouchDispatcher.h"
#include "Render/Renderer.h"

#include <Trelmix/Host/ViewHost.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace trelmix {

/// The host of a window: touches go to the engine, its frames into the context that is current.
///
/// Long, because all of it shares one end: the application may destroy the host inside whatever a touch, a
/// layout or a frame sets off.
class WindowHost final : public ViewHost {
public:
    WindowHost(HostedEngine engine, Options options);
    ~WindowHost() override;

    std::shared_ptr<TrelmixMapEngine> engine() const override { return _engine.shared(); }
    Layout layout() const override { return _layout; }
    bool setLayout(Layout layout) override;
    /// Why the layout is out of range; empty when it was taken.
    std::string place(const Layout& layout);

    // What a touch sets off may destroy this host: the dispatcher is called last, and once.
    void touchBegan(std::int64_t identifier, CGPoint point, double time) override;
    void touchMoved(std::int64_t identifier, CGPoint point, double time) override;
    void touchEnded(std::int64_t identifier, CGPoint point, double time) override;
    void touchCancelled(std::int64_t identifier, double time) override;
    void cancelTouches() override;
    void setOverlayImages(std::vector<OverlayImage> images) override;
    bool pump() override;
    void waitForWork(double seconds) override;
    void setWakeUp(std::function<void()> function) override;
    bool needsDisplay() const override;
    double secondsToPump() const override;
    Drawing drawFrame(bool always) override;
    Result<std::shared_ptr<const UIImage>> image() override;
    std::string failure() const override { return _failure; }
    void contextWasLost() override;

private:
    class ContextUse;

    /// Fingers that move together are one event: fed one by one, the first of them would look like a turn.
    void deliver(const Touch& touch);
    CGPoint inMap(CGPoint point) const;
    bool prepare();
    Drawing drawChanges(bool always);
    bool draw(const DrawFrame& frame, const Layout& layout, const std::vector<OverlayImage>& overlays);

    /// There is a frame to draw.
    std::atomic<bool> _needsDisplay = true;
    /// The owner has been woken and has not asked since.
    mutable std::atomic<bool> _isTold = false;
    /// Ends with this host.
    std::shared_ptr<const bool> _life = std::make_shared<const bool>(true);
    HostedEngine _engine;
    Options _options;
    TouchDispatcher _touches;
    std::vector<Touch> _moves;
    Layout _layout;
    bool _layoutChanged = true;
    std::mutex _overlayMutex;
    std::vector<OverlayImage> _overlays;
    std::uint64_t _overlayNumber = 0;
    // The drawing thread's.
    std::uint64_t _drawnOverlayNumber = 0;
    std::optional<GLCapabilities> _capabilities;
    std::shared_ptr<GLGraveyard> _graveyard;
    std::unique_ptr<Renderer> _renderer;
    DrawFrame _drawn;
    RenderArea _drawnArea;
    double _drawnScale = 1;
    int _uploadsLeft = 0;
    std::string _failure;
    /// The last member: its end waits for a call under way.
    std::unique_ptr<WakeUp> _wakeUp;
};

} // namespace trelmix
