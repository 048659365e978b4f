#include "Engine/TrelmixMapEngineSceneView.h"

#include "Engine/SceneUpdate.h"
#include "Geo/GeoUtils.h"
#include "Overlays/LevelPlanNode.h"
#include "Overlays/MarkerNode.h"
#include "Platform/Foundation/MainEntry.h"
#include "Platform/Foundation/Thread.h"
#include "Platform/View/LayoutConstraint.h"

#include <cmath>

namespace trelmix {

namespace {

/// The last reference may fall on the thread that draws, which must not tear down what it is drawing.
void destroyOnMainThread(TrelmixMapEngineSceneView* engine) {
    if (Thread::isMainThread()) {
        delete engine;
        return;
    }
    auto holder = std::shared_ptr<TrelmixMapEngineSceneView>(engine);
    DispatchQueue::main().async([holder = std::move(holder)]() mutable { holder.reset(); });
}

} // namespace

std::shared_ptr<TrelmixMapEngineSceneView> TrelmixMapEngineSceneView::make(CGRect frame,
                                                                           const MapBehaviour& behaviour) {
    const SceneLock lock;
    Thread::fixMainThread();
    auto engine = std::shared_ptr<TrelmixMapEngineSceneView>(new TrelmixMapEngineSceneView(frame, behaviour),
                                                             destroyOnMainThread);
    engine->setupSceneKit();
    return engine;
}

TrelmixMapEngineSceneView::TrelmixMapEngineSceneView(CGRect frame, const MapBehaviour& behaviour)
    : ViewNode(frame), _behaviour(behaviour) {}

TrelmixMapEngineSceneView::~TrelmixMapEngineSceneView() {
    const SceneLock lock;
    clearNodes(*_defaultScene);
}

std::shared_ptr<TrelmixMapMarker>
TrelmixMapEngineSceneView::createMapMarker(std::shared_ptr<const UIImage> icon,
                                           CLLocationCoordinate2D coordinate) {
    auto marker = MarkerNode::make();
    marker->setMarkerIcon(std::move(icon));
    marker->setCoordinate(coordinate);
    return marker;
}

std::shared_ptr<TrelmixLevelPlanNode>
TrelmixMapEngineSceneView::createLevelPlanNode(std::shared_ptr<const UIImage> image,
                                               CLLocationCoordinate2D southWest,
                                               CLLocationCoordinate2D northEast) {
    auto plan = LevelPlanNode::make(coordinateOf(southWest), coordinateOf(northEast));
    plan->setLevelPlanImage(std::move(image));
    return plan;
}

std::shared_ptr<TrelmixMapEngineSceneView> TrelmixMapEngineSceneView::self() {
    return std::static_pointer_cast<TrelmixMapEngineSceneView>(shared_from_this());
}

void TrelmixMapEngineSceneView::setupSceneKit() {
    _sceneView = SCNView::make(frame());
    _sceneView->setAlpha(0);
    addSubview(_sceneView);
    for (const char* format : {"V:|[sceneView]|", "H:|[sceneView]|"}) {
        if (auto pinned =
                LayoutConstraint::constraintsWithVisualFormat(format, {}, {{"sceneView", _sceneView}})) {
            addConstraints(std::move(*pinned));
        }
    }
    _defaultScene = std::make_shared<SCNScene>();
    _sceneView->setScene(_defaultScene);
    setupCamera();
    _gestures.use(_behaviour);
    _sceneView->setSceneDelegate(self());
    _sceneView->setAllowsCameraControl(false);
    _sceneView->setIsPlaying(true);
    setBackgroundColor(UIColor::whiteColor());
}

void TrelmixMapEngineSceneView::setupCamera() {
    _cameraNode = std::make_shared<SCNNode>();
    SCNCamera camera;
    camera.automaticallyAdjustsZRange = true;
    _cameraNode->setCamera(camera);
    _defaultScene->addChildNode(_cameraNode);
    _sceneView->setPointOfView(_cameraNode);
}

std::optional<UIColor> TrelmixMapEngineSceneView::backgroundColor() const {
    const MainEntry entry{"backgroundColor"};
    return entry ? UIView::backgroundColor() : std::nullopt;
}

std::shared_ptr<TrelmixMapProjection> TrelmixMapEngineSceneView::projection() const {
    const MainEntry entry{"projection"};
    return entry ? cameraProjection() : nullptr;
}

void TrelmixMapEngineSceneView::setBackgroundColor(std::optional<UIColor> color) {
    if (const MainEntry entry{"setBackgroundColor"}) {
        UIView::setBackgroundColor(color);
        _sceneView->setBackgroundColor(color);
    }
}

void TrelmixMapEngineSceneView::setDelegate(std::weak_ptr<TrelmixMapEngineDelegate> delegate) {
    writeOnMain("setDelegate", _delegate, std::move(delegate));
}

std::shared_ptr<TrelmixMapEngineCamera> TrelmixMapEngineSceneView::camera() const {
    const MainEntry entry{"camera"};
    if (!entry || !cameraProjection()) {
        return nullptr;
    }
    return std::make_shared<TrelmixMapEngineCamera>(cameraProjection()->cameraRecord());
}

void TrelmixMapEngineSceneView::setEnableRotationGesture(bool enable) {
    writeOnMain("setEnableRotationGesture", _gestures.flags.rotation, enable);
}

void TrelmixMapEngineSceneView::setEnableTiltGesture(bool enable) {
    writeOnMain("setEnableTiltGesture", _gestures.flags.tilt, enable);
}

void TrelmixMapEngineSceneView::setEnableZoomGesture(bool enable) {
    writeOnMain("setEnableZoomGesture", _gestures.flags.zoom, enable);
}

void TrelmixMapEngineSceneView::setEnableScrollGesture(bool enable) {
    writeOnMain("setEnableScrollGesture", _gestures.flags.scroll, enable);
}

void TrelmixMapEngineSceneView::setMaxZoom(float zoom) {
    const MainEntry entry{"setMaxZoom"};
    if (entry && !std::isnan(zoom)) {
        const auto keep = self();
        _cameraPath.setHighestZoom(zoom);
    }
}

void TrelmixMapEngineSceneView::setMinZoom(float zoom) {
    const MainEntry entry{"setMinZoom"};
    if (entry && !std::isnan(zoom)) {
        const auto keep = self();
        _cameraPath.setLowestZoom(zoom);
    }
}

void TrelmixMapEngineSceneView::setCameraTargetBoundsNorthEast(CLLocationCoordinate2D corner) {
    if (const MainEntry entry{"setCameraTargetBoundsNorthEast"}) {
        _cameraPath.setBoundsNorthEast(corner);
    }
}

void TrelmixMapEngineSceneView::setCameraTargetBoundsSouthWest(CLLocationCoordinate2D corner) {
    if (const MainEntry entry{"setCameraTargetBoundsSouthWest"}) {
        _cameraPath.setBoundsSouthWest(corner);
    }
}

void TrelmixMapEngineSceneView::setBehaviour(const MapBehaviour& behaviour) {
    const MainEntry entry{"setBehaviour"};
    if (!entry || behaviour == _behaviour) {
        return;
    }
    const auto keep = self();
    _behaviour = behaviour;
    _gestures.use(behaviour);
    _cameraPath.behaviourChanged();
}

void TrelmixMapEngineSceneView::setHitTestBoundingBoxOnly(bool boxOnly) {
    writeOnMain("setHitTestBoundingBoxOnly", _taps.hitTestBoundingBoxOnly, boxOnly);
}

void TrelmixMapEngineSceneView::initialiseWithTarget(CLLocationCoordinate2D target, float zoom) {
    const MainEntry entry{"initialiseWithTarget"};
    if (!entry || !std::isfinite(target.latitude) || !std::isfinite(target.longitude) ||
        !std::isfinite(zoom)) {
        return;
    }
    const auto keep = self();
    _cameraPath.initialise({target.latitude, target.longitude}, zoom);
}

void TrelmixMapEngineSceneView::setCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera,
                                          bool animated) {
    const MainEntry entry{"setCamera"};
    if (!entry || !camera) {
        return;
    }
    const CLLocationCoordinate2D target = camera->target();
    CameraChange change;
    change.target = GeoUtils::scenePoint({target.latitude, target.longitude});
    change.rotation = -Radians::fromDegrees(camera->rotation());
    change.viewingAngle = Radians::fromDegrees(camera->viewingAngle());
    change.zoom = camera->zoom();
    change.animated = animated;
    internalSetCamera(change);
}

void TrelmixMapEngineSceneView::setCameraWithRotation(double rotation, double viewingAngle, float zoom,
                                                      bool animated) {
    const MainEntry entry{"setCamera"};
    if (!entry || !cameraProjection()) {
        return;
    }
    CameraChange change = currentCamera();
    change.rotation = -Radians::fromDegrees(rotation);
    change.viewingAngle = Radians::fromDegrees(viewingAngle);
    change.zoom = zoom;
    change.animated = animated;
    internalSetCamera(change);
}

void TrelmixMapEngineSceneView::internalSetCamera(const CameraChange& change) {
    const SceneLock lock;
    const auto keep = self();
    _cameraPath.set(change);
}

void TrelmixMapEngineSceneView::informDelegateAboutIdle() {
    const SceneLock lock;
    const auto keep = self();
    _cameraPath.informDelegateAboutIdle();
}

void TrelmixMapEngineSceneView::reportIdleToDelegate() {
    const auto record = camera();
    if (const auto delegate = _delegate.lock(); delegate && record) {
        callOut([&] { delegate->mapViewDidChangeCamera(record); });
    }
    if (const auto delegate = _delegate.lock(); delegate && record) {
        callOut([&] { delegate->mapViewIdleAtCamera(record); });
    }
}

void TrelmixMapEngineSceneView::updateOverlays() {
    updatePossibleGeoNodes(*_defaultScene, cameraProjection()->internalZoom(),
                           cameraProjection()->mapRotation().narrowed(),
                           cameraProjection()->mapViewingAngle().narrowed());
}

void TrelmixMapEngineSceneView::rendererUpdateAtTime(SCNView& view, double) {
    const SceneLock lock;
    if (cameraProjection()) {
        updateOverlays();
    }
    if (_renderedFirstTime) {
        return;
    }
    _renderedFirstTime = true;
    if (Thread::isMainThread()) {
        view.setAlpha(1);
        return;
    }
    DispatchQueue::main().async([weak = std::weak_ptr(self())] {
        const SceneLock inner;
        if (const auto engine = weak.lock()) {
            engine->_sceneView->setAlpha(1);
        }
    });
}

void TrelmixMapEngineSceneView::layoutSubviews() {
    ViewNode::layoutSubviews();
    if (cameraProjection()) {
        cameraProjection()->setMapDimensions({frame().size.width, frame().size.height});
    }
}

} // namespace trelmix
