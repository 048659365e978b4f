#pragma once

#include "Platform/View/UIGestureRecognizer.h"

namespace trelmix {

class TrelmixMapEngineSceneView;

/// From the fingers' movements to camera changes: the recognisers of an engine's view and what they do, one
/// gesture at a time, about the middle of the view. Every step is one whole change; the recogniser is set
/// back after it, so that the next one measures only what is new.
///
/// A part of its engine. Needs the scene lock.
class EngineGestures {
public:
    /// What fingers may do.
    struct Flags {
        bool rotation = true;
        bool tilt = true;
        bool zoom = true;
        bool scroll = true;
    };
    Flags flags;

    explicit EngineGestures(TrelmixMapEngineSceneView& engine) : _engine(engine) {}

    /// Adds the recognisers to the engine's view, once.
    void setup();

    /// While a marker is dragged any two; otherwise any two without a pan, and with one only while it cannot
    /// scroll.
    bool recognizesTogether(const UIGestureRecognizer& asked, const UIGestureRecognizer& other) const;

private:
    using Handler = void (*)(TrelmixMapEngineSceneView& engine, UIGestureRecognizer& recognizer);
    void add(const std::shared_ptr<UIGestureRecognizer>& recognizer, Handler handler);
    void pinch(UIGestureRecognizer& recognizer);
    void rotate(UIGestureRecognizer& recognizer);
    void pan(UIGestureRecognizer& recognizer);
    void doubleTap();
    void performMapScroll(double scrollX, double scrollY);
    bool canMove() const;

    TrelmixMapEngineSceneView& _engine;
};

} // namespace trelmix
