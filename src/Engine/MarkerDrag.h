#pragma once

#include "Platform/View/UIGestureRecognizer.h"

#include <Trelmix/Platform/CGGeometry.h>

#include <memory>

namespace trelmix {

class MarkerNode;
class TrelmixMapEngineSceneView;

/// What a long press means: it takes up a marker that may be dragged and moves it with the finger, or tells
/// of a place on the map when it ends.
///
/// A part of its engine. Needs the scene lock.
class MarkerDrag {
public:
    explicit MarkerDrag(TrelmixMapEngineSceneView& engine) : _engine(engine) {}

    /// False also when the marker has left the map: the rest of the press then moves nothing.
    bool isDragging() const;
    /// @param location points, in the engine's view.
    void press(CGPoint location, UIGestureRecognizerState state);

private:
    void begin(CGPoint location, UIGestureRecognizerState state);
    void proceed(CGPoint location);
    void end();

    TrelmixMapEngineSceneView& _engine;
    std::shared_ptr<MarkerNode> _marker;
    CGPoint _lastPoint;
};

} // namespace trelmix
