#pragma once

#include "Platform/View/TwoFingerGestureRecognizer.h"

namespace trelmix {

/// Two fingers that move apart or together.
class UIPinchGestureRecognizer : public TwoFingerGestureRecognizer {
public:
    /// Points by which the fingers' distance changes before the gesture begins.
    static constexpr double kThreshold = 8.0;

    /// The fingers' distance over that at the start; finite and greater than 0.
    double scale() const { return _scale; }
    /// What `scale` counts on from. Values that are not finite or not greater than 0 are ignored.
    void setScale(double scale);

protected:
    void startPair(CGPoint first, CGPoint second) override;
    bool followPair(CGPoint first, CGPoint second) override;
    bool isBeyondThreshold() const override;
    void reset() override { _scale = 1; }

private:
    double _scale = 1;
    double _startSpan = 1;
    double _span = 1;
};

} // namespace trelmix
