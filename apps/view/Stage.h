#pragma once

#include "common/scene/MapScene.h"
#include "view/CameraControl.h"
#include "view/HitReporter.h"
#include "view/LoadedScene.h"
#include "view/ScreenLayout.h"
#include "view/SidePanel.h"
#include "view/Window.h"

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineDelegateGroup.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trelmix::apps {

/// One scene's map: the engine with everything on it, and, once it is in the window, the thread that draws
/// it. One at a time in a window, which must outlive it. Main thread.
class Stage {
public:
    /// Not in the window yet. Fails for the side view's reasons.
    static Result<std::unique_ptr<Stage>> make(Window& window, const LoadedScene& scene,
                                               const SceneCamera& camera, const ScreenLayout& layout,
                                               std::function<void(const std::string&)> report);
    /// Has it drawn in the window, where no other stage is; call it once.
    /// @param keepsPicture the window keeps what it shows until `showPicture`.
    /// @returns what is wrong with the layout or the driver; empty when it went well.
    std::string enterWindow(const ScreenLayout& layout, bool keepsPicture);
    bool isShown() const { return _isShown; }
    void showPicture();
    /// Waits for the frame under way.
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    TrelmixMapEngine& engine() const { return *_map.engine; }
    const MapScene& map() const { return _map; }
    ViewHost& host() const { return *_host; }
    RenderThread& thread() const { return *_thread; }
    CameraKeys& keys() const { return *_keys; }
    /// Empty when the scene has none.
    SidePanel* side() const { return _side.get(); }

    void setLayout(const ScreenLayout& layout);
    /// Shows the next higher (1) or lower (-1) level of the side view, or else of the level plans.
    /// @returns the level that shows now; empty in a scene without levels.
    std::optional<std::int64_t> stepLevel(int direction);

    /// True when every tile is there and nothing has moved for some frames.
    bool isSettled();
    /// The window's picture as it is drawn now; the reason says why there is none.
    Result<std::shared_ptr<const UIImage>> picture(const ScreenLayout& layout);

private:
    explicit Stage(Window& window) : _window(window) {}
    void findPlans(const SceneFile& scene);
    std::string addSidePanel(const LoadedScene& scene, const ScreenLayout& layout);
    void showPlansOf(std::int64_t level);

    Window& _window;
    MapScene _map;
    std::shared_ptr<HitReporter> _reporter;
    std::shared_ptr<CameraKeys> _keys = std::make_shared<CameraKeys>();
    std::shared_ptr<TrelmixMapEngineDelegateGroup> _listeners;
    /// The level plans that belong to a level.
    std::vector<std::pair<std::int64_t, std::shared_ptr<TrelmixMapOverlay>>> _plans;
    /// The level that is seen: the topmost, while nobody has chosen one.
    std::optional<std::int64_t> _planLevel;
    std::unique_ptr<SidePanel> _side;
    std::shared_ptr<ViewHost> _host;
    std::unique_ptr<RenderThread> _thread;
    std::atomic<bool> _isShown = true;
    std::uint64_t _lastPresent = 0;
    std::uint64_t _stillSince = 0;
};

} // namespace trelmix::apps
