#pragma once

#include "Engine/Gestures/CameraGestures.h"

namespace trelmix {

class TrelmixMapEngineSceneView;

/// One gesture at a time, about the middle of the view. Every step is one whole change; the recogniser is set
/// back after it, so that the next one measures only what is new.
class ClassicGestures final : public CameraGestures {
public:
    /// Both live as long as the engine.
    ClassicGestures(TrelmixMapEngineSceneView& engine, const GestureFlags& flags)
        : _engine(engine), _flags(flags) {}

    std::vector<Gesture> gestures() override;
    void doubleTap(CGPoint location) override;
    /// Any two without a pan, and with one only while it cannot scroll.
    bool recognizesTogether(const UIGestureRecognizer& asked,
                            const UIGestureRecognizer& other) const override;

private:
    void pinch(UIGestureRecognizer& recognizer);
    void rotate(UIGestureRecognizer& recognizer);
    void pan(UIGestureRecognizer& recognizer);
    void scroll(double scrollX, double scrollY);

    TrelmixMapEngineSceneView& _engine;
    const GestureFlags& _flags;
};

} // namespace trelmix
