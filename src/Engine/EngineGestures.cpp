// From the fingers' movements to camera changes. Every step is one whole change; the recogniser is set back
// after it, so that the next one measures only what is new.

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
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

void TrelmixMapEngineSceneView::setupGestureRecognisers() {
    const auto pinch = std::make_shared<UIPinchGestureRecognizer>();
    const auto rotation = std::make_shared<UIRotationGestureRecognizer>();
    const auto pan = std::make_shared<UIPanGestureRecognizer>();
    const auto tap = std::make_shared<UITapGestureRecognizer>();
    const auto doubleTap = std::make_shared<UITapGestureRecognizer>();
    const auto longPress = std::make_shared<UILongPressGestureRecognizer>();
    doubleTap->setNumberOfTapsRequired(2);
    tap->requireGestureRecognizerToFail(doubleTap);
    tap->requireGestureRecognizerToFail(longPress);

    using Handler = void (*)(TrelmixMapEngineSceneView&, UIGestureRecognizer&);
    const auto add = [this](const std::shared_ptr<UIGestureRecognizer>& recognizer, Handler handler) {
        recognizer->setDelegate(self());
        recognizer->addTarget([weak = std::weak_ptr(self()), handler](UIGestureRecognizer& sender) {
            if (const auto engine = weak.lock()) {
                const SceneLock lock;
                handler(*engine, sender);
            }
        });
        addGestureRecognizer(recognizer);
    };
    add(pinch, [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer& r) { engine.pinchGesture(r); });
    add(rotation,
        [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer& r) { engine.rotationGesture(r); });
    add(pan, [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer& r) { engine.panGesture(r); });
    add(tap, [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer& r) { engine.tappingGesture(r); });
    add(doubleTap,
        [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer&) { engine.doubleTapGesture(); });
    add(longPress,
        [](TrelmixMapEngineSceneView& engine, UIGestureRecognizer& r) { engine.longPressGesture(r); });
}

bool TrelmixMapEngineSceneView::gestureRecognizerShouldRecognizeSimultaneouslyWith(
    UIGestureRecognizer& asked, UIGestureRecognizer& other) {
    if (isDragging()) {
        return true;
    }
    const bool hasPan = dynamic_cast<UIPanGestureRecognizer*>(&asked) != nullptr ||
                        dynamic_cast<UIPanGestureRecognizer*>(&other) != nullptr;
    return !hasPan || !_enableScrollGesture;
}

void TrelmixMapEngineSceneView::pinchGesture(UIGestureRecognizer& recognizer) {
    if (!canMoveByGesture()) {
        return;
    }
    auto& pinch = static_cast<UIPinchGestureRecognizer&>(recognizer);
    const double steps = std::log2(pinch.scale());
    pinch.setScale(1.0);
    if (_enableZoomGesture && !std::isnan(steps)) {
        CameraChange change = currentCamera();
        change.zoom = CameraProjection::zoomLevelSanitised(static_cast<float>(steps) + change.zoom);
        change.fromGesture = true;
        internalSetCamera(change);
    }
}

void TrelmixMapEngineSceneView::rotationGesture(UIGestureRecognizer& recognizer) {
    if (!canMoveByGesture()) {
        return;
    }
    auto& rotation = static_cast<UIRotationGestureRecognizer&>(recognizer);
    const double turned = rotation.rotation();
    rotation.setRotation(0);
    if (_enableRotationGesture) {
        CameraChange change = currentCamera();
        change.rotation = static_cast<float>(turned + _cameraProjection->mapRotation());
        change.fromGesture = true;
        internalSetCamera(change);
    }
}

void TrelmixMapEngineSceneView::panGesture(UIGestureRecognizer& recognizer) {
    if (!canMoveByGesture()) {
        return;
    }
    auto& pan = static_cast<UIPanGestureRecognizer&>(recognizer);
    const CGPoint translation = pan.translation(pan.view());
    const CGPoint velocity = pan.velocity(pan.view());
    pan.setTranslation({0, 0}, pan.view());
    const std::size_t touches = pan.numberOfTouches();
    if (translation == CGPoint{} || touches == 0 || !isFinite(translation) || !isFinite(velocity)) {
        return;
    }
    if (touches == 1 || (isMostlySideways(translation) && isMostlySideways(velocity))) {
        if (_enableScrollGesture) {
            performMapScroll(translation.x, translation.y);
        }
    } else if (_enableTiltGesture) {
        CameraChange change = currentCamera();
        change.viewingAngle =
            static_cast<float>(translation.y * kTiltPerPoint + _cameraProjection->mapViewingAngle());
        change.fromGesture = true;
        internalSetCamera(change);
    }
}

void TrelmixMapEngineSceneView::doubleTapGesture() {
    if (!canMoveByGesture()) {
        return;
    }
    CameraChange change = currentCamera();
    change.zoom += 1.0F;
    change.fromGesture = true;
    change.animated = true;
    internalSetCamera(change);
}

void TrelmixMapEngineSceneView::performMapScroll(double scrollX, double scrollY) {
    if (scrollX == 0 || scrollY == 0 || !_cameraProjection) {
        return;
    }
    const OpenGlPoint moved = normalisedOpenGlPoint({scrollX, scrollY});
    CameraChange change = currentCamera();
    change.target.x += moved.x;
    change.target.y += moved.y;
    change.fromGesture = true;
    // An empty view has no ratio: what comes out is not finite, and the camera path ignores it.
    internalSetCamera(change);
}

OpenGlPoint TrelmixMapEngineSceneView::normalisedOpenGlPoint(ScreenPoint displacement) const {
    if (!_cameraProjection) {
        return {0, 0};
    }
    const double rotation = _cameraProjection->mapRotation();
    const double metresPerPoint =
        GeoUtils::metersPerMapPoint(_cameraProjection->cameraTarget().lat, _cameraProjection->internalZoom());
    const double mapPoints = _cameraProjection->mapPointsPerMeterMax() / (1.0 / metresPerPoint) *
                             _cameraProjection->mapPointScreenPointRatio() /
                             std::cos(_cameraProjection->mapViewingAngle());
    const double a = std::cos(rotation) * displacement.x + std::sin(rotation) * displacement.y;
    const double b = std::sin(rotation) * displacement.x - std::cos(rotation) * displacement.y;
    return {-a * mapPoints, b * mapPoints};
}

} // namespace trelmix
