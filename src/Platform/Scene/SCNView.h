#pragma once

#include "Platform/Scene/DrawList.h"
#include "Platform/Scene/HitTest.h"
#include "Platform/Scene/SCNScene.h"
#include "Platform/View/ViewNode.h"

#include <memory>
#include <optional>
#include <vector>

namespace trelmix {

class SCNView;

/// Hears of every frame before it is drawn, on the thread that draws, with the scene locked.
class SCNSceneRendererDelegate {
public:
    virtual ~SCNSceneRendererDelegate() = default;
    virtual void rendererUpdateAtTime(SCNView& view, double time) = 0;
};

/// The view that shows a scene. A host asks it for one frame after another and has them drawn.
class SCNView final : public ViewNode {
public:
    static std::shared_ptr<SCNView> make(CGRect frame);

    const std::shared_ptr<SCNScene>& scene() const { return _scene; }
    void setScene(std::shared_ptr<SCNScene> scene);
    /// The node whose camera the scene is seen with.
    void setPointOfView(const std::shared_ptr<SCNNode>& node) { _pointOfView = node; }
    std::shared_ptr<SCNNode> pointOfView() const { return _pointOfView.lock(); }
    void setSceneDelegate(std::weak_ptr<SCNSceneRendererDelegate> delegate) {
        _delegate = std::move(delegate);
    }
    /// The platform's own camera gestures; there are none.
    void setAllowsCameraControl(bool) {}
    /// While false, no frame advances or updates anything.
    bool isPlaying() const { return _isPlaying; }
    void setIsPlaying(bool playing);
    /// Seconds; only kept, frames take their time from the clock.
    double sceneTime() const { return _sceneTime; }
    void setSceneTime(double time) { _sceneTime = time; }

    /// One frame at a time of the clock: advances actions, has the overlays updated, collects what is drawn.
    /// Takes the scene lock for it; any one thread at a time. The same list while nothing changed.
    DrawFrame nextFrame(double time);

    /// From the camera through a point of the view; empty for an empty view and a point that is not finite.
    /// Needs the scene lock.
    std::optional<SceneRay> rayThrough(CGPoint point) const;
    /// Every visible node under a point of the view, nearest first; see `hitTestScene`. Needs the scene lock.
    std::vector<SCNHitTestResult> hitTest(CGPoint point, bool boxesOnly) const;

private:
    DrawCamera drawCamera() const;
    explicit SCNView(CGRect frame) : ViewNode(frame) {}

    std::shared_ptr<SCNScene> _scene;
    std::weak_ptr<SCNNode> _pointOfView;
    std::weak_ptr<SCNSceneRendererDelegate> _delegate;
    bool _isPlaying = false;
    double _sceneTime = 0;
};

} // namespace trelmix
