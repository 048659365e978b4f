#pragma once

#include "Platform/View/UIGestureRecognizer.h"

namespace trelmix {

/// One finger that rests for a while; then it may move, and the gesture lasts until it lifts. Continuous.
///
/// A second finger before it begins makes it fail; one that comes later is not looked at.
class UILongPressGestureRecognizer : public UIGestureRecognizer {
public:
    /// Seconds.
    static constexpr double kDuration = 0.5;
    /// Points the finger may move before the gesture begins.
    static constexpr double kSlop = 10.0;

protected:
    void touchBegan(const TrackedTouch& touch) override;
    void touchesMoved(double time) override;
    void touchEnded(const TrackedTouch& touch) override;
    std::optional<double> deadline() const override;
    void deadlineReached() override { recognize(); }
    std::size_t locatingTouchCount() const override { return 1; }
    void reset() override { _finger.reset(); }

private:
    std::optional<TrackedTouch> _finger;
};

} // namespace trelmix
