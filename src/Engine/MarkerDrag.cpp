#include "Engine/MarkerDrag.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Overlays/MarkerNode.h"
#include "Platform/Foundation/SceneLock.h"

namespace trelmix {

namespace {

bool isUnderWay(UIGestureRecognizerState state) {
    return state == UIGestureRecognizerState::possible || state == UIGestureRecognizerState::began ||
           state == UIGestureRecognizerState::changed;
}

} // namespace

bool MarkerDrag::isDragging() const {
    return _marker && _marker->scene() == _engine.defaultScene().get();
}

void MarkerDrag::press(CGPoint location, UIGestureRecognizerState state) {
    if (!_engine.cameraProjection()) {
        return;
    }
    if (!_marker) {
        begin(location, state);
    } else if (!isUnderWay(state)) {
        end();
    } else if (isDragging()) {
        proceed(location);
    }
}

void MarkerDrag::begin(CGPoint location, UIGestureRecognizerState state) {
    const auto delegate = _engine.currentDelegate();
    if (isUnderWay(state)) {
        for (const auto& hit :
             _engine.sceneView()->hitTest(location, _engine.taps().hitTestBoundingBoxOnly)) {
            const auto marker = std::dynamic_pointer_cast<MarkerNode>(hit.node);
            if (marker && marker->isDraggable()) {
                _marker = marker;
                _lastPoint = location;
                if (delegate) {
                    callOut([&] { delegate->mapViewDidBeginDraggingMarker(marker); });
                }
                return;
            }
        }
    } else if (state == UIGestureRecognizerState::ended && delegate) {
        if (const auto coordinate = _engine.taps().groundCoordinateAt(location)) {
            callOut([&] { delegate->mapViewDidLongPressAt(*coordinate); });
        }
    }
}

void MarkerDrag::proceed(CGPoint location) {
    const ScreenPoint moved{location.x - _lastPoint.x, location.y - _lastPoint.y};
    _lastPoint = location;
    if (moved.x == 0 && moved.y == 0) {
        return;
    }
    const auto marker = _marker;
    marker->dragBy(_engine.cameraPath().normalisedOpenGlPoint({-moved.x, -moved.y}));
    if (const auto delegate = _engine.currentDelegate()) {
        callOut([&] { delegate->mapViewDidDragMarker(marker); });
    }
}

void MarkerDrag::end() {
    const auto marker = _marker;
    if (const auto delegate = _engine.currentDelegate()) {
        callOut([&] { delegate->mapViewDidEndDraggingMarker(marker); });
    }
    if (_marker == marker) {
        _marker = nullptr;
    }
}

} // namespace trelmix
