#include "Engine/Gestures/ClassicGestures.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIPinchGestureRecognizer.h"
#include "Platform/View/UIRotationGestureRecognizer.h"

#include <cmath>

namespace trelmix {

namespace {

/// How much more sideways than up a movement of several fingers must be to scroll rather than tilt.
constexpr double kSidewaysFactor = 1.5;

bool isFinite(CGPoint p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isMostlySideways(CGPoint p) {
    return std::abs(kSidewaysFactor * p.x) > std::abs(p.y);
}

} // namespace

std::vector<CameraGestures::Gesture> ClassicGestures::gestures() {
    return {
        {std::make_shared<UIPinchGestureRecognizer>(), [this](UIGestureRecognizer& r) { pinch(r); }},
        {std::make_shared<UIRotationGestureRecognizer>(), [this](UIGestureRecognizer& r) { rotate(r); }},
        {std::make_shared<UIPanGestureRecognizer>(), [this](UIGestureRecognizer& r) { pan(r); }},
    };
}

bool ClassicGestures::recognizesTogether(const UIGestureRecognizer& asked,
                                         const UIGestureRecognizer& other) const {
    const bool hasPan = dynamic_cast<const UIPanGestureRecognizer*>(&asked) != nullptr ||
                        dynamic_cast<const UIPanGestureRecognizer*>(&other) != nullptr;
    return !hasPan || !_flags.scroll;
}

void ClassicGestures::pinch(UIGestureRecognizer& recognizer) {
    auto& fingers = static_cast<UIPinchGestureRecognizer&>(recognizer);
    const double steps = std::log2(fingers.scale());
    fingers.setScale(1.0);
    if (_flags.zoom && !std::isnan(steps)) {
        CameraChange change = _engine.currentCamera();
        change.zoom = _engine.cameraPath().limitedZoom(static_cast<float>(steps) + change.zoom);
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void ClassicGestures::rotate(UIGestureRecognizer& recognizer) {
    auto& rotation = static_cast<UIRotationGestureRecognizer&>(recognizer);
    const double turned = rotation.rotation();
    rotation.setRotation(0);
    if (_flags.rotation) {
        CameraChange change = _engine.currentCamera();
        change.rotation = Radians{turned} + _engine.cameraProjection()->mapRotation();
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void ClassicGestures::pan(UIGestureRecognizer& recognizer) {
    auto& fingers = static_cast<UIPanGestureRecognizer&>(recognizer);
    const CGPoint translation = fingers.translation(fingers.view());
    const CGPoint velocity = fingers.velocity(fingers.view());
    fingers.setTranslation({0, 0}, fingers.view());
    const std::size_t touches = fingers.numberOfTouches();
    if (translation == CGPoint{} || touches == 0 || !isFinite(translation) || !isFinite(velocity)) {
        return;
    }
    if (touches == 1 || (isMostlySideways(translation) && isMostlySideways(velocity))) {
        if (_flags.scroll) {
            scroll(translation.x, translation.y);
        }
    } else if (_flags.tilt) {
        CameraChange change = _engine.currentCamera();
        change.viewingAngle =
            Radians{translation.y * kTiltPerPoint} + _engine.cameraProjection()->mapViewingAngle();
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void ClassicGestures::doubleTap(CGPoint) {
    CameraChange change = _engine.currentCamera();
    change.zoom += 1.0F;
    change.fromGesture = true;
    change.animated = true;
    _engine.internalSetCamera(change);
}

void ClassicGestures::scroll(double scrollX, double scrollY) {
    if (scrollX == 0 || scrollY == 0) {
        return;
    }
    const OpenGlPoint moved = _engine.cameraPath().normalisedOpenGlPoint({scrollX, scrollY});
    CameraChange change = _engine.currentCamera();
    change.target.x += moved.x;
    change.target.y += moved.y;
    change.fromGesture = true;
    // An empty view has no ratio: what comes out is not finite, and the camera path ignores it.
    _engine.internalSetCamera(change);
}

} // namespace trelmix
