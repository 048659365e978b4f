#pragma once

#include "Engine/Gestures/CameraGestures.h"

namespace trelmix {

class TrelmixMapEngineSceneView;

/// The recognisers of an engine's view: those that move the camera, taps, and the long press.
///
/// A part of its engine. Needs the scene lock.
class EngineGestures {
public:
    GestureFlags flags;

    explicit EngineGestures(TrelmixMapEngineSceneView& engine) : _engine(engine) {}

    /// Adds the recognisers to the engine's view, once.
    void setup();

    /// While a marker is dragged any two; otherwise as the camera's gestures want it.
    bool recognizesTogether(const UIGestureRecognizer& asked, const UIGestureRecognizer& other) const;

private:
    using Action = UIGestureRecognizer::Action;
    void add(const std::shared_ptr<UIGestureRecognizer>& recognizer, Action action);
    CGPoint locationOf(const UIGestureRecognizer& recognizer) const;
    bool canMove() const;

    TrelmixMapEngineSceneView& _engine;
    std::unique_ptr<CameraGestures> _camera;
};

} // namespace trelmix
