#pragma once

#include "Engine/Gestures/AnchoredGestures.h"
#include "Engine/Gestures/ClassicGestures.h"
#include "Engine/Gestures/Glide.h"

#include <Trelmix/MapBehaviour.h>

namespace trelmix {

class TrelmixMapEngineSceneView;

/// The recognisers of an engine's view: those that move the camera, taps, and the long press.
///
/// A part of its engine. Needs the scene lock.
class EngineGestures {
public:
    GestureFlags flags;

    explicit EngineGestures(TrelmixMapEngineSceneView& engine) : _engine(engine) {}

    /// Puts the recognisers into the engine's view, in place of those before; what fingers do at the time is
    /// cancelled.
    void use(const MapBehaviour& behaviour);
    /// A press under way reports nothing any more, and neither does a tap that waits for a second one.
    void cancelPress(bool alsoTap);

    /// While a marker is dragged any two; otherwise as the camera's gestures want it.
    bool recognizesTogether(const UIGestureRecognizer& asked, const UIGestureRecognizer& other) const;

private:
    using Action = UIGestureRecognizer::Action;
    void add(const std::shared_ptr<UIGestureRecognizer>& recognizer, Action action);
    CGPoint locationOf(const UIGestureRecognizer& recognizer) const;
    bool canMove() const;
    void move(UIGestureRecognizer& recognizer, const Action& action);
    void glideOn(double time);

    TrelmixMapEngineSceneView& _engine;
    ClassicGestures _classic{_engine, flags};
    AnchoredGestures _anchored{_engine, flags};
    CameraGestures* _camera = &_classic;
    Glide _glide;
    std::vector<std::shared_ptr<UIGestureRecognizer>> _recognizers;
    std::shared_ptr<UIGestureRecognizer> _press, _tap;
};

} // namespace trelmix
