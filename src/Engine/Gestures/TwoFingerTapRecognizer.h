#pragma once

#include "Platform/View/UIGestureRecognizer.h"

namespace trelmix {

/// Two fingers that touch shortly, both in their places. Discrete.
class TwoFingerTapRecognizer final : public UIGestureRecognizer {
public:
    /// Seconds from the first finger's touching to the last one's lifting.
    static constexpr double kLongest = 0.35;

    /// The middle of the two, points, in the recogniser's view.
    CGPoint middle() const { return pointInView(_middle, view()); }

protected:
    void touchBegan(const TrackedTouch& touch) override;
    void touchesMoved(double time) override;
    void touchEnded(const TrackedTouch& touch) override;
    std::optional<double> deadline() const override;
    void deadlineReached() override { fail(); }
    bool isDiscrete() const override { return true; }
    void reset() override { _count = 0; }

private:
    int _count = 0;
    double _start = 0;
    CGPoint _middle;
};

} // namespace trelmix
