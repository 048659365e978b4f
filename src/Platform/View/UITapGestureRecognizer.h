#pragma once

#include "Platform/View/UIGestureRecognizer.h"

namespace trelmix {

/// One finger that touches shortly and stays in place, once or several times in a row. Discrete.
///
/// A press as long as a long press, a second finger and a cancelled touch make it fail.
class UITapGestureRecognizer : public UIGestureRecognizer {
public:
    /// Points a finger may move within a tap.
    static constexpr double kSlop = 10.0;
    /// Seconds from a finger's lifting to the next tap's touching.
    static constexpr double kTapInterval = 0.35;
    /// Points between the first tap and the following ones.
    static constexpr double kTapDistance = 40.0;

    int numberOfTapsRequired() const { return _tapsRequired; }
    /// At least 1.
    void setNumberOfTapsRequired(int taps) { _tapsRequired = taps < 1 ? 1 : taps; }

protected:
    void touchBegan(const TrackedTouch& touch) override;
    void touchesMoved(double time) override;
    void touchEnded(const TrackedTouch& touch) override;
    void touchWillBegin(CGPoint location, double time) override;
    std::optional<double> deadline() const override;
    void deadlineReached() override { fail(); }
    bool isDiscrete() const override { return true; }
    bool isWaiting() const override { return _isBetweenTaps; }
    bool acceptsTouch() const override { return !wantsRecognition(); }
    void reset() override;

private:
    int _tapsRequired = 1;
    int _taps = 0;
    bool _isBetweenTaps = false;
    CGPoint _firstTap;
    double _lastChange = 0;
};

} // namespace trelmix
