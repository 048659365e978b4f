#include "Platform/Scene/SCNView.h"

#include "Platform/Foundation/SceneLock.h"

namespace trelmix {

std::shared_ptr<SCNView> SCNView::make(CGRect frame) {
    return std::shared_ptr<SCNView>(new SCNView(frame));
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
    if (const auto node = _pointOfView.lock()) {
        frame.camera.position = node->presentedPosition();
        frame.camera.eulerAngles = node->presentedEulerAngles();
        frame.camera.pivot = widened(node->pivot());
        frame.camera.fieldOfView = node->camera() ? node->camera()->fieldOfView : frame.camera.fieldOfView;
    }
    if (_scene) {
        frame.list = _scene->collect();
    }
    return frame;
}

} // namespace trelmix
