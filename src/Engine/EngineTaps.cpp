#include "Engine/EngineTaps.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
#include "Overlays/MarkerNode.h"
#include "Platform/Foundation/SceneLock.h"

#include <algorithm>

namespace trelmix {

std::optional<CLLocationCoordinate2D> EngineTaps::groundCoordinateAt(CGPoint location) const {
    const auto ray = _engine.sceneView()->rayThrough(location);
    if (!ray || !(ray->direction.z < 0)) {
        return std::nullopt;
    }
    return _engine.cameraProjection()->worldCoordinateFor(location);
}

void EngineTaps::tap(CGPoint location) {
    if (!_engine.cameraProjection()) {
        return;
    }
    const auto hits = _engine.sceneView()->hitTest(location, hitTestBoundingBoxOnly);
    if (std::any_of(hits.begin(), hits.end(), [this](const auto& hit) { return tapNode(hit.node); })) {
        return;
    }
    const auto coordinate = groundCoordinateAt(location);
    if (const auto delegate = _engine.currentDelegate(); delegate && coordinate) {
        callOut([&] { delegate->mapViewDidTapAt(*coordinate); });
    }
}

bool EngineTaps::tapNode(const std::shared_ptr<SCNNode>& node) {
    const auto delegate = _engine.currentDelegate();
    if (const auto marker = std::dynamic_pointer_cast<MarkerNode>(node)) {
        if (!marker->isTappable()) {
            return false;
        }
        if (!delegate || !callOut([&] { return delegate->mapViewDidTapMarker(marker); })) {
            centreOnMarker(*marker);
        }
        return true;
    }
    const auto overlay = std::dynamic_pointer_cast<TrelmixMapOverlay>(node);
    if (!overlay || !overlay->tappable()) {
        return false;
    }
    if (delegate) {
        callOut([&] { delegate->mapViewDidTapAtOverlay(overlay); });
    }
    return true;
}

void EngineTaps::centreOnMarker(const MarkerNode& marker) {
    // A stored coordinate may be invalid while the marker still stands where it was.
    CLLocationCoordinate2D place = marker.coordinate();
    if (!CLLocationCoordinate2DIsValid(place)) {
        place = marker.presentedCoordinate();
    }
    if (!_engine.cameraProjection() || !CLLocationCoordinate2DIsValid(place)) {
        return;
    }
    CameraChange change = _engine.currentCamera();
    change.target = GeoUtils::scenePoint({place.latitude, place.longitude});
    change.animated = true;
    _engine.internalSetCamera(change);
}

} // namespace trelmix
