#pragma once

#include "Platform/View/UIGestureRecognizer.h"

namespace trelmix {

/// What pinch and rotation share: they follow the first two fingers that are down, from the moment the second
/// one touches. Continuous.
///
/// When one of the two lifts, a third finger takes its place without a jump; without one the gesture ends,
/// and may start anew with a finger that comes.
class TwoFingerGestureRecognizer : public UIGestureRecognizer {
protected:
    /// Starts measuring from this pair; what was measured before stays.
    virtual void startPair(CGPoint first, CGPoint second) = 0;
    /// Measures the step to the pair's new place. False when nothing changed.
    virtual bool followPair(CGPoint first, CGPoint second) = 0;
    virtual bool isBeyondThreshold() const = 0;

    void touchBegan(const TrackedTouch& touch) final;
    void touchesMoved(double time) final;
    void touchEnded(const TrackedTouch& touch) final;
    bool restartsWithRemainingTouches() const final { return true; }
    std::size_t locatingTouchCount() const final { return 2; }
};

} // namespace trelmix
