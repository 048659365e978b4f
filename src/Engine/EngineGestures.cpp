#include "Engine/EngineGestures.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIPinchGestureRecognizer.h"
#include "Platform/View/UIRotationGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"

#include <cmath>

namespace trelmix {

namespace {

/// How much more sideways than up a movement of several fingers must be to scroll rather than tilt.
constexpr double kSidewaysFactor = 1.5;
/// Radians of tilt per point that the fingers move down.
constexpr double kTiltPerPoint = -0.017453292519943295;

bool isFinite(CGPoint p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isMostlySideways(CGPoint p) {
    return std::abs(kSidewaysFactor * p.x) > std::abs(p.y);
}

} // namespace

void EngineGestures::setup() {
    const auto pinching = std::make_shared<UIPinchGestureRecognizer>();
    const auto turning = std::make_shared<UIRotationGestureRecognizer>();
    const auto panning = std::make_shared<UIPanGestureRecognizer>();
    const auto tapping = std::make_shared<UITapGestureRecognizer>();
    const auto doubleTapping = std::make_shared<UITapGestureRecognizer>();
    const auto pressing = std::make_shared<UILongPressGestureRecognizer>();
    doubleTapping->setNumberOfTapsRequired(2);
    tapping->requireGestureRecognizerToFail(doubleTapping);
    tapping->requireGestureRecognizerToFail(pressing);

    using Engine = TrelmixMapEngineSceneView;
    add(pinching, [](Engine& engine, UIGestureRecognizer& r) { engine.gestures().pinch(r); });
    add(turning, [](Engine& engine, UIGestureRecognizer& r) { engine.gestures().rotate(r); });
    add(panning, [](Engine& engine, UIGestureRecognizer& r) { engine.gestures().pan(r); });
    add(tapping, [](Engine& engine, UIGestureRecognizer& r) {
        if (!engine.drag().isDragging()) {
            engine.taps().tap(r.locationInView(engine.shared_from_this()));
        }
    });
    add(doubleTapping, [](Engine& engine, UIGestureRecognizer&) { engine.gestures().doubleTap(); });
    add(pressing, [](Engine& engine, UIGestureRecognizer& r) {
        engine.drag().press(r.locationInView(engine.shared_from_this()), r.state());
    });
}

void EngineGestures::add(const std::shared_ptr<UIGestureRecognizer>& recognizer, Handler handler) {
    recognizer->setDelegate(_engine.weakSelf());
    recognizer->addTarget([weak = _engine.weakSelf(), handler](UIGestureRecognizer& sender) {
        if (const auto engine = weak.lock()) {
            const SceneLock lock;
            handler(*engine, sender);
        }
    });
    _engine.addGestureRecognizer(recognizer);
}

bool EngineGestures::canMove() const {
    return _engine.cameraProjection() && !_engine.drag().isDragging();
}

bool EngineGestures::recognizesTogether(const UIGestureRecognizer& asked,
                                        const UIGestureRecognizer& other) const {
    if (_engine.drag().isDragging()) {
        return true;
    }
    const bool hasPan = dynamic_cast<const UIPanGestureRecognizer*>(&asked) != nullptr ||
                        dynamic_cast<const UIPanGestureRecognizer*>(&other) != nullptr;
    return !hasPan || !flags.scroll;
}

void EngineGestures::pinch(UIGestureRecognizer& recognizer) {
    if (!canMove()) {
        return;
    }
    auto& fingers = static_cast<UIPinchGestureRecognizer&>(recognizer);
    const double steps = std::log2(fingers.scale());
    fingers.setScale(1.0);
    if (flags.zoom && !std::isnan(steps)) {
        CameraChange change = _engine.currentCamera();
        change.zoom = CameraProjection::zoomLevelSanitised(static_cast<float>(steps) + change.zoom);
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void EngineGestures::rotate(UIGestureRecognizer& recognizer) {
    if (!canMove()) {
        return;
    }
    auto& rotation = static_cast<UIRotationGestureRecognizer&>(recognizer);
    const double turned = rotation.rotation();
    rotation.setRotation(0);
    if (flags.rotation) {
        CameraChange change = _engine.currentCamera();
        change.rotation = Radians{turned} + _engine.cameraProjection()->mapRotation();
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void EngineGestures::pan(UIGestureRecognizer& recognizer) {
    if (!canMove()) {
        return;
    }
    auto& fingers = static_cast<UIPanGestureRecognizer&>(recognizer);
    const CGPoint translation = fingers.translation(fingers.view());
    const CGPoint velocity = fingers.velocity(fingers.view());
    fingers.setTranslation({0, 0}, fingers.view());
    const std::size_t touches = fingers.numberOfTouches();
    if (translation == CGPoint{} || touches == 0 || !isFinite(translation) || !isFinite(velocity)) {
        return;
    }
    if (touches == 1 || (isMostlySideways(translation) && isMostlySideways(velocity))) {
        if (flags.scroll) {
            performMapScroll(translation.x, translation.y);
        }
    } else if (flags.tilt) {
        CameraChange change = _engine.currentCamera();
        change.viewingAngle =
            Radians{translation.y * kTiltPerPoint} + _engine.cameraProjection()->mapViewingAngle();
        change.fromGesture = true;
        _engine.internalSetCamera(change);
    }
}

void EngineGestures::doubleTap() {
    if (!canMove()) {
        return;
    }
    CameraChange change = _engine.currentCamera();
    change.zoom += 1.0F;
    change.fromGesture = true;
    change.animated = true;
    _engine.internalSetCamera(change);
}

void EngineGestures::performMapScroll(double scrollX, double scrollY) {
    if (scrollX == 0 || scrollY == 0 || !_engine.cameraProjection()) {
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
