#include "Engine/GeoNode.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/Foundation/WakeUp.h"

#include <limits>

namespace trelmix {

GeoNode::~GeoNode() = default;

void GeoNode::attachTo(const std::shared_ptr<TrelmixMapEngine>& map) {
    const auto keep = shared_from_this();
    _map = map;
    if (!map) {
        clearEverything();
        return;
    }
    const auto engine = std::dynamic_pointer_cast<TrelmixMapEngineSceneView>(map);
    if (!engine) {
        return;
    }
    // Set up for another engine: its origin and its metre scale are not ours.
    if (_cameraProjection && _cameraProjection != engine->cameraProjection()) {
        removeFromParentNode();
        _cameraProjection = nullptr;
    }
    if (!_cameraProjection) {
        setUpFor(*engine);
    }
    // The first camera has called the application, which may have taken the node away again.
    if (_cameraProjection && _map.lock() == map) {
        addToMap(*engine);
    }
}

void GeoNode::setUpFor(TrelmixMapEngineSceneView& mapSceneView) {
    if (!mapSceneView.cameraProjection()) {
        mapSceneView.cameraPath().initialiseProjection(initialTargetCoordinateForProjection());
        mapSceneView.cameraPath().setupProjection();
        if (!mapSceneView.cameraPath().hasInitialZoom()) {
            setupInitialCameraZoom(mapSceneView);
        }
    }
    if (_map.lock().get() == &mapSceneView) {
        setup(mapSceneView.cameraProjection());
    }
}

void GeoNode::setApplicationData(std::any data) {
    _userInfo.swap(data);
    // The old value's destructor is the application's code.
    callOut([&data] { data.reset(); });
}

void GeoNode::clearEverything() {
    if (const auto& shown = geometry()) {
        // A plane keeps its size for the next set-up; what it showed is let go.
        shown->setMaterials({});
        setGeometry(shown);
    }
    _cameraProjection = nullptr;
    removeFromParentNode();
    setApplicationData({});
}

void GeoNode::setupInitialCameraZoom(TrelmixMapEngineSceneView& mapSceneView) {
    mapSceneView.cameraPath().applyInitialZoom(TrelmixMapEngineSceneView::kDefaultInitialZoom);
}

void GeoNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    mapSceneView.defaultScene()->addChildNode(shared_from_this());
}

void GeoNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    _cameraProjection = projection;
}

void GeoNode::setLayerIndex(std::int64_t index) {
    _zIndex = index;
    WakeUp::signal(Wake::frame); // which applies it
}

void GeoNode::applyRenderingOrder() {
    constexpr std::int64_t kBelow = 100;
    const std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    setRenderingOrder(_zIndex < lowest + kBelow ? lowest : _zIndex - kBelow);
}

void GeoNode::update(float, Radians, Radians) {
    applyRenderingOrder();
}

} // namespace trelmix
