// What a tap and a long press mean: overlays, dragged markers, or places on the map.

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
#include "Overlays/MarkerNode.h"
#include "Platform/Foundation/SceneLock.h"

#include <algorithm>

namespace trelmix {

namespace {

bool isUnderWay(UIGestureRecognizerState state) {
    return state == UIGestureRecognizerState::possible || state == UIGestureRecognizerState::began ||
           state == UIGestureRecognizerState::changed;
}

} // namespace

std::optional<CLLocationCoordinate2D> TrelmixMapEngineSceneView::groundCoordinateAt(CGPoint location) const {
    const auto ray = _sceneView->rayThrough(location);
    if (!ray || !(ray->direction.z < 0)) {
        return std::nullopt; // above the horizon the ray meets the ground behind the camera
    }
    return _cameraProjection->worldCoordinateFor(location);
}

void TrelmixMapEngineSceneView::tappingGesture(const UIGestureRecognizer& recognizer) {
    if (!_cameraProjection || isDragging()) {
        return;
    }
    const CGPoint location = recognizer.locationInView(shared_from_this());
    const auto hits = _sceneView->hitTest(location, _hitTestBoundingBoxOnly);
    if (std::any_of(hits.begin(), hits.end(), [this](const auto& hit) { return tapNode(hit.node); })) {
        return;
    }
    const auto coordinate = groundCoordinateAt(location);
    if (const auto delegate = _delegate.lock(); delegate && coordinate) {
        callOut([&] { delegate->mapViewDidTapAt(*coordinate); });
    }
}

bool TrelmixMapEngineSceneView::tapNode(const std::shared_ptr<SCNNode>& node) {
    const auto delegate = _delegate.lock();
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

void TrelmixMapEngineSceneView::centreOnMarker(const MarkerNode& marker) {
    // A stored coordinate may be invalid while the marker still stands where it was.
    CLLocationCoordinate2D place = marker.coordinate();
    if (!CLLocationCoordinate2DIsValid(place)) {
        place = marker.presentedCoordinate();
    }
    if (!_cameraProjection || !CLLocationCoordinate2DIsValid(place)) {
        return;
    }
    CameraChange change = currentCamera();
    change.target = GeoUtils::scenePoint({place.latitude, place.longitude});
    change.animated = true;
    internalSetCamera(change);
}

bool TrelmixMapEngineSceneView::isDragging() const {
    return _draggingMarker && _draggingMarker->scene() == _defaultScene.get();
}

void TrelmixMapEngineSceneView::longPressGesture(const UIGestureRecognizer& recognizer) {
    if (!_cameraProjection) {
        return;
    }
    const CGPoint location = recognizer.locationInView(shared_from_this());
    const UIGestureRecognizerState state = recognizer.state();
    if (!_draggingMarker) {
        beginDragAt(location, state);
    } else if (!isUnderWay(state)) {
        endDrag();
    } else if (isDragging()) { // the marker may have left the map; then the rest of the press moves nothing
        continueDrag(location);
    }
}

void TrelmixMapEngineSceneView::beginDragAt(CGPoint location, UIGestureRecognizerState state) {
    const auto delegate = _delegate.lock();
    if (isUnderWay(state)) {
        for (const auto& hit : _sceneView->hitTest(location, _hitTestBoundingBoxOnly)) {
            const auto marker = std::dynamic_pointer_cast<MarkerNode>(hit.node);
            if (marker && marker->isDraggable()) {
                _draggingMarker = marker;
                _lastDraggingPoint = location;
                if (delegate) {
                    callOut([&] { delegate->mapViewDidBeginDraggingMarker(marker); });
                }
                return;
            }
        }
    } else if (state == UIGestureRecognizerState::ended && delegate) {
        if (const auto coordinate = groundCoordinateAt(location)) {
            callOut([&] { delegate->mapViewDidLongPressAt(*coordinate); });
        }
    }
}

void TrelmixMapEngineSceneView::continueDrag(CGPoint location) {
    const ScreenPoint moved{location.x - _lastDraggingPoint.x, location.y - _lastDraggingPoint.y};
    _lastDraggingPoint = location;
    if (moved.x == 0 && moved.y == 0) {
        return;
    }
    const auto marker = _draggingMarker;
    marker->dragBy(normalisedOpenGlPoint({-moved.x, -moved.y}));
    if (const auto delegate = _delegate.lock()) {
        callOut([&] { delegate->mapViewDidDragMarker(marker); });
    }
}

void TrelmixMapEngineSceneView::endDrag() {
    const auto marker = _draggingMarker;
    if (const auto delegate = _delegate.lock()) {
        callOut([&] { delegate->mapViewDidEndDraggingMarker(marker); });
    }
    if (_draggingMarker == marker) {
        _draggingMarker = nullptr;
    }
}

} // namespace trelmix
