#include "Platform/Scene/SCNView.h"

#include "Platform/Foundation/SceneLock.h"
#include "Platform/Foundation/WakeUp.h"

#include <cmath>

namespace trelmix {

std::shared_ptr<SCNView> SCNView::make(CGRect frame) {
    return std::shared_ptr<SCNView>(new SCNView(frame));
}

void SCNView::setScene(std::shared_ptr<SCNScene> scene) {
    _scene = std::move(scene);
    WakeUp::signal(Wake::frame);
}

void SCNView::setIsPlaying(bool playing) {
    _isPlaying = playing;
    WakeUp::signal(Wake::frame);
}

DrawCamera SCNView::drawCamera() const {
    DrawCamera camera;
    if (const auto node = _pointOfView.lock()) {
        camera.position = node->presentedPosition();
        camera.eulerAngles = node->presentedEulerAngles();
        camera.pivot = widened(node->pivot());
        camera.fieldOfView = node->camera() ? node->camera()->fieldOfView : camera.fieldOfView;
    }
    return camera;
}

std::optional<SceneRay> SCNView::rayThrough(CGPoint point) const {
    const CGSize size = frame().size;
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || size.width <= 0 || size.height <= 0) {
        return std::nullopt;
    }
    return sceneRayThrough(point, size, drawCamera());
}

std::vector<SCNHitTestResult> SCNView::hitTest(CGPoint point, bool boxesOnly) const {
    const auto ray = rayThrough(point);
    return ray && _scene ? hitTestScene(*_scene, *ray, boxesOnly) : std::vector<SCNHitTestResult>{};
}

DrawFrame SCNView::nextFrame(double time) {
    const SceneLock lock;
    const auto keep = shared_from_this();
    if (_isPlaying && _scene) {
        _scene->advanceActions(time);
        if (const auto delegate = _delegate.lock()) {
            delegate->rendererUpdateAtTime(*this, time);
        }
    }
    DrawFrame frame;
    frame.background = backgroundColor().value_or(UIColor::whiteColor());
    frame.alpha = alpha();
    frame.camera = drawCamera();
    if (_scene) {
        frame.list = _scene->collect();
    }
    return frame;
}

} // namespace trelmix
