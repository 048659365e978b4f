#pragma once

#include "common/scene/SceneFile.h"
#include "view/ScreenLayout.h"

#include <Trelmix/Host/SideviewHost.h>
#include <Trelmix/TMXSideviewScrollView.h>
#include <Trelmix/TMXSideviewScrollViewDelegate.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace trelmix::apps {

/// The side view of a scene, below the map. At first a drag in it moves the map; panning and zooming the
/// picture has to be switched on. Main thread.
class SidePanel {
public:
    /// @param onLevel hears the number of each level that is displayed from now on.
    /// @returns a reason that names the file and the place in it when the side view cannot be made.
    static Result<std::unique_ptr<SidePanel>> make(const SceneSideview& scene, const std::string& scenePath,
                                                   const ScreenLayout& layout,
                                                   std::shared_ptr<TrelmixMapEngine> engine,
                                                   std::function<void(std::int64_t)> onLevel);

    /// What the engine has to tell of its camera; another one after `resize`.
    std::shared_ptr<TrelmixMapEngineDelegate> engineListener() const { return _sideview; }
    TMXSideviewScrollView& sideview() const { return *_sideview; }

    /// Fits the picture to another width. What cannot be read any more stays as it is.
    void resize(const ScreenLayout& layout);

    /// Points of the window.
    void touch(SideviewHost::Phase phase, std::int64_t identifier, CGPoint point, double time);
    void cancelTouches() { _host->cancelTouches(); }
    void wheel(CGPoint point, double factor);

    /// The next higher (1) or lower (-1) level.
    /// @returns the one that is displayed now.
    std::int64_t stepLevel(int direction);
    void toggleZooming() { _sideview->setEnableZooming(!_sideview->enableZooming()); }

    /// The picture as it is now; empty when it cannot be made.
    std::shared_ptr<const UIImage> image() const;

private:
    struct TapListener;

    SidePanel(const SceneSideview& scene, std::string scenePath, std::shared_ptr<TrelmixMapEngine> engine,
              std::function<void(std::int64_t)> onLevel);
    std::string build(const ScreenLayout& layout);
    void showLevel(std::int64_t level);
    CGPoint inside(CGPoint point) const;

    SceneSideview _scene;
    std::string _scenePath;
    std::shared_ptr<TrelmixMapEngine> _engine;
    std::function<void(std::int64_t)> _onLevel;
    ScreenLayout _layout;
    std::shared_ptr<TMXSideviewScrollView> _sideview;
    std::unique_ptr<SideviewHost> _host;
    std::shared_ptr<TapListener> _taps;
    CGPoint _lastTouch;
};

} // namespace trelmix::apps
