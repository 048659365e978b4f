#include "Platform/Scene/SCNView.h"

#include "Platform/Foundation/SceneLock.h"

#include <cmath>

namespace trelmix {

std::shared_ptr<SCNView> SCNView::make(CGRect frame) {
    return std::shared_ptr<SCNView>(new SCNView(frame));
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

std::vector<SCNHitTestResult> SCNView::hitTest(CGPoint point, bool boxesOnly) const {
    const CGSize size = frame().size;
    if (!_scene || !std::isfinite(point.x) || !std::isfinite(point.y) || size.width <= 0 ||
        size.height <= 0) {
        return {};
    }
    return hitTestScene(*_scene, SceneRay::through(point, size, drawCamera()), boxesOnly);
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
