#pragma once

#include "common/scene/MapScene.h"
#include "common/scene/SceneRunner.h"
#include "view/HitReporter.h"
#include "view/ScreenLayout.h"
#include "view/SidePanel.h"
#include "view/Window.h"

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineDelegateGroup.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trelmix::apps {

/// A scene file and what it names.
struct LoadedScene {
    /// The scene file's.
    std::string path;
    SceneFile file;
    SceneContent content;
    /// Size of the side view's picture in points; absent without a side view.
    std::optional<CGSize> sidePicture;
};

/// One scene's map in the window: the engine with everything on it, and the thread that draws it. One at a
/// time in a window, which must outlive it. Main thread.
class Stage {
public:
    /// The reason of a failure is that of the side view, of the host or of the driver (`isDriverAtFault`).
    static Result<std::unique_ptr<Stage>> make(Window& window, const LoadedScene& scene,
                                               const SceneCamera& camera, const ScreenLayout& layout,
                                               std::function<void(const std::string&)> report);
    static bool isDriverAtFault(const std::string& reason);
    /// Waits for the frame under way.
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    TrelmixMapEngine& engine() const { return *_map.engine; }
    const MapScene& map() const { return _map; }
    ViewHost& host() const { return *_host; }
    RenderThread& thread() const { return *_thread; }
    /// Empty when the scene has none.
    SidePanel* side() const { return _side.get(); }

    void setLayout(const ScreenLayout& layout);

    /// True when every tile is there and nothing has moved for some frames.
    bool isSettled();
    /// The window's picture as it is drawn now; the reason says why there is none.
    Result<std::shared_ptr<const UIImage>> picture(const ScreenLayout& layout);

private:
    explicit Stage(Window& window) : _window(window) {}
    std::string startDrawing(const ScreenLayout& layout);
    std::string addSidePanel(const LoadedScene& scene, const ScreenLayout& layout);
    void showPlansOf(std::int64_t level);

    Window& _window;
    MapScene _map;
    std::shared_ptr<HitReporter> _reporter;
    std::shared_ptr<TrelmixMapEngineDelegateGroup> _listeners;
    /// The level plans that belong to a level.
    std::vector<std::pair<std::int64_t, std::shared_ptr<TrelmixMapOverlay>>> _plans;
    std::unique_ptr<SidePanel> _side;
    std::shared_ptr<ViewHost> _host;
    std::unique_ptr<RenderThread> _thread;
    std::uint64_t _lastPresent = 0;
    std::uint64_t _stillSince = 0;
};

} // namespace trelmix::apps
