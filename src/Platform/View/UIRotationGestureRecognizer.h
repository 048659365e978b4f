#pragma once

#include "Platform/View/TwoFingerGestureRecognizer.h"

#include <numbers>
#include <optional>

namespace trelmix {

/// Two fingers that turn about each other.
class UIRotationGestureRecognizer : public TwoFingerGestureRecognizer {
public:
    /// Radians (5 degrees) the fingers turn before the gesture begins.
    static constexpr double kThreshold = 5.0 * std::numbers::pi / 180.0;

    /// Radians, clockwise as seen on screen, whole turns counted.
    double rotation() const { return _rotation; }
    /// What `rotation` counts on from. Values that are not finite are ignored.
    void setRotation(double rotation);

protected:
    void startPair(CGPoint first, CGPoint second) override;
    bool followPair(CGPoint first, CGPoint second) override;
    bool isBeyondThreshold() const override;
    void reset() override;

private:
    double _rotation = 0;
    double _turned = 0;
    /// Of the line from the first to the second finger; absent while both are in one place.
    std::optional<double> _angle;
};

} // namespace trelmix
